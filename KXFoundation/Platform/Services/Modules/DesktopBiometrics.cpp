// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Services/DesktopBiometrics.h>

#include "BusConversation.h"
#include "DesktopServices.h"

namespace kx {

namespace {

// fprintd's interface: https://fprint.freedesktop.org/fprintd-dev/Manager.html
DesktopReply hasFingerprintReader(const char* busAddress, std::uint32_t timeoutMilliseconds,
                                  bool* hasReader) {
    return converse(busAddress, timeoutMilliseconds, *hasReader, [](BusConversation& talk, bool& isThere) {
        isThere = talk.call({.service = "net.reactivated.Fprint",
                             .path = "/net/reactivated/Fprint/Manager",
                             .interface = "net.reactivated.Fprint.Manager",
                             .method = "GetDefaultDevice",
                             .saysNone = "net.reactivated.Fprint.Error.NoSuchDevice"}) != nullptr;
    });
}

}  // namespace

const DesktopBiometrics kDesktopBiometrics{.hasFingerprintReader = hasFingerprintReader};

}  // namespace kx
