// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <KXFoundation/Platform/Services/DesktopReply.h>

namespace kx {

/// The part of the desktop's module that asks fprintd, the fingerprint service. Any thread.
struct DesktopBiometrics {
    /// Asks on the bus at `busAddress` for the default fingerprint reader; Answered with whether there is
    /// one. Returns within `timeoutMilliseconds` whatever the bus does.
    DesktopReply (*hasFingerprintReader)(const char* busAddress, std::uint32_t timeoutMilliseconds,
                                         bool* hasReader);
};

}  // namespace kx
