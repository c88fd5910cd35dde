// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Services/IPv4Address.h>

namespace kx {

/// Asks the system's name service for a host's IPv4 addresses and answers the first; Missing if there is
/// none. Waits for the answer, as long as the system's settings let it. Any thread.
KX_EXPORT Result<IPv4Address> lookUpHost(std::string_view name);

}  // namespace kx
