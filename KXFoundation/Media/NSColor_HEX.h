// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSColor;

/// Colours from a designer's code. No instances; any thread.
struct KX_EXPORT NSColor_HEX {
    NSColor_HEX() = delete;

    /// The colour of six hexadecimal digits, red first, of either case: "#FF8800", "ff8800", "0xFF8800",
    /// "0x#FF8800", with white space around them or not. Components are the 32-bit quotients n/255; `alpha`
    /// is held to 0 to 1. Of each pair of characters the digits before the first other one count, so "1G" is
    /// 1 and a pair that begins with no digit 0. Every other text, the short form "#FFF" and an absent one
    /// included, gives clearColor.
    [[nodiscard]] static std::shared_ptr<NSColor> colorWithHexString(std::optional<std::string_view> text,
                                                                     double alpha = 1);
};

}  // namespace kx
