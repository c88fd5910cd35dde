// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Small computations on texts. No instances; any thread.
class KX_EXPORT KXToolUtils {
  public:
    KXToolUtils() = delete;

    /// The MD5 digest (RFC 1321) of the text's bytes before its first zero byte, as 32 lower-case hexadecimal
    /// digits; empty for an absent text. Tells texts apart, protects nothing. Allocates its answer alone.
    [[nodiscard]] static std::string calculateMD5(std::optional<std::string_view> text);
};

}  // namespace kx
