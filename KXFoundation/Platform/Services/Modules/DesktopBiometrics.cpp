#include <KXFoundation/Platform/Services/DesktopBiometrics.h>

#include "BusQuestion.h"
#include "DesktopServices.h"

namespace kx {

namespace {

// fprintd's interface: https://fprint.freedesktop.org/fprintd-dev/Manager.html
constexpr const char* kNoSuchDevice = "net.reactivated.Fprint.Error.NoSuchDevice";

DesktopReply hasFingerprintReader(const char* busAddress, std::uint32_t timeoutMilliseconds,
                                  bool* hasReader) {
    std::string refusal;
    const DesktopReply reply = ask({.bus = busAddress,
                                    .service = "net.reactivated.Fprint",
                                    .path = "/net/reactivated/Fprint/Manager",
                                    .interface = "net.reactivated.Fprint.Manager",
                                    .method = "GetDefaultDevice"},
                                   timeoutMilliseconds, nullptr, &refusal);
    *hasReader = reply == DesktopReply::Answered;
    return refusal == kNoSuchDevice ? DesktopReply::Answered : reply;
}

}  // namespace

const DesktopBiometrics kDesktopBiometrics{.hasFingerprintReader = hasFingerprintReader};

}  // namespace kx
