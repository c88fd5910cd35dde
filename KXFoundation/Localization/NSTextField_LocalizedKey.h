// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSTextField;

/// Gives a text field its placeholder by key.
struct KX_EXPORT NSTextField_LocalizedKey {
    NSTextField_LocalizedKey() = delete;

    /// The key is not remembered: it is looked up now, and a language chosen later changes nothing here. An
    /// absent or empty key does nothing; a key without a text anywhere is shown itself.
    static void setLocalizedPlaceHolder(const std::shared_ptr<NSTextField>& field,
                                        std::optional<std::string_view> key);
    /// Always absent.
    [[nodiscard]] static std::optional<std::string> localizedPlaceHolder(
        const std::shared_ptr<NSTextField>& field);
};

}  // namespace kx
