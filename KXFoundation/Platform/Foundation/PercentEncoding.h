#pragma once

#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The text as a part of an address that is taken for nothing but itself (RFC 3986, 2.3): every byte but
/// letters, digits and "-._~" as "%XX".
[[nodiscard]] KX_EXPORT std::string percentEncoded(std::string_view text);

}  // namespace kx
