// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <KXFoundation/Platform/Graphics/NSTextAlignment.h>

namespace kx {

class NSCoder;

/// How controls write their alignment: its number under "alignment". Private to Views.
void encodeAlignment(NSCoder& coder, NSTextAlignment alignment);

/// Absent if there is none, or no number that is one.
[[nodiscard]] std::optional<NSTextAlignment> decodeAlignment(const NSCoder& coder);

}  // namespace kx
