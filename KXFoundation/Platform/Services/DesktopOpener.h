// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <KXFoundation/Platform/Services/DesktopReply.h>

namespace kx {

/// The part of the desktop's module that talks to the desktop portal. Any thread. Every call returns within
/// `timeoutMilliseconds` whatever the bus does.
struct DesktopOpener {
    /// Whether the bus itself answers.
    DesktopReply (*reachBus)(const char* busAddress, std::uint32_t timeoutMilliseconds);
    /// Asks the portal for the version of its address opener; the bus may start the portal for that.
    DesktopReply (*portalVersion)(const char* busAddress, std::uint32_t timeoutMilliseconds,
                                  std::uint32_t* version);
    /// Has the portal open an address, of any scheme but "file". Answered: the portal has taken it over.
    DesktopReply (*openAddress)(const char* busAddress, const char* address,
                                std::uint32_t timeoutMilliseconds);
};

}  // namespace kx
