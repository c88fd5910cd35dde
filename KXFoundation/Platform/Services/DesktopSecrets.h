// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include <KXFoundation/Platform/Services/DesktopReply.h>

namespace kx {

/// What a secret is found by. UTF-8, zero-terminated.
struct DesktopSecret {
    const char* application;
    const char* service;
    const char* account;
};

/// The part of the desktop's module that talks to the Secret Service (org.freedesktop.secrets) on the bus at
/// an address. Each call returns within `timeoutMilliseconds` whatever bus, service and person do; a dialogue
/// in which the person is to unlock the collection stays open beyond that, and until it ends every further
/// call that needs the collection unlocked is TimedOut at once. Any thread.
struct DesktopSecrets {
    /// Answered if the service is there and has a default collection, locked or not; Refused without one.
    DesktopReply (*probe)(const char* busAddress, std::uint32_t timeoutMilliseconds);
    /// Answered with whether there is such a secret; if so it was handed to `take` before the return.
    DesktopReply (*copy)(const char* busAddress, const DesktopSecret* secret,
                         std::uint32_t timeoutMilliseconds,
                         void (*take)(void* context, const void* data, std::size_t size), void* context,
                         bool* found);
    /// Adds it to the default collection, in place of one with the same attributes.
    DesktopReply (*add)(const char* busAddress, const DesktopSecret* secret, const void* data,
                        std::size_t size, std::uint32_t timeoutMilliseconds);
    /// Answered with whether there was one, in any collection.
    DesktopReply (*remove)(const char* busAddress, const DesktopSecret* secret,
                           std::uint32_t timeoutMilliseconds, bool* found);
};

}  // namespace kx
