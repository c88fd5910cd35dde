// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <KXFoundation/Platform/Services/DesktopReply.h>

namespace kx {

/// The part of the desktop's module that asks the desktop portal for proxies. Any thread.
struct DesktopProxies {
    /// Answered: the first proxy for the address was handed to `take` before the return ("direct://" for
    /// none, "http://host:port", "socks://host:port"), or nothing if there is none at all. Whatever rules
    /// there are, a script of the network's included, the portal has followed. Returns within
    /// `timeoutMilliseconds` whatever the bus does.
    DesktopReply (*lookUp)(const char* busAddress, const char* address, std::uint32_t timeoutMilliseconds,
                           void (*take)(void* context, const char* proxy), void* context);
};

}  // namespace kx
