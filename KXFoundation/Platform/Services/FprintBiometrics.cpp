// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Services/BusAddress.h>
#include <KXFoundation/Platform/Services/DesktopBiometrics.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>
#include <KXFoundation/Platform/Services/FprintBiometrics.h>

namespace kx {

namespace {

constexpr std::chrono::nanoseconds kPauseAfterTimeout = std::chrono::minutes(1);

Error failure(DesktopReply reply) {
    switch (reply) {
        case DesktopReply::TimedOut:
            return {ErrorKind::TimedOut, 0, "fingerprint service"};
        case DesktopReply::Refused:
            return {ErrorKind::Denied, 0, "fingerprint service"};
        default:
            return {ErrorKind::Missing, 0,
                    reply == DesktopReply::NoBus ? "system bus" : "fingerprint service"};
    }
}

Result<BiometryType> ask(std::chrono::milliseconds patience) {
    const auto module = desktopModuleWithin(patience);
    if (!module) return module.error();
    bool hasReader = false;
    const DesktopReply reply = (*module)->biometrics->hasFingerprintReader(
        systemBusAddress().c_str(), static_cast<std::uint32_t>(patience.count()), &hasReader);
    if (reply != DesktopReply::Answered) return failure(reply);
    return hasReader ? BiometryType::Fingerprint : BiometryType::None;
}

}  // namespace

Result<BiometryType> FprintBiometrics::type(std::chrono::milliseconds patience) {
    const Clock& clock = Clock::slot().current();
    if (clock.now() < silentUntil_.load(std::memory_order_relaxed)) return failure(DesktopReply::TimedOut);
    auto found = ask(patience);
    if (!found && found.error().kind == ErrorKind::TimedOut)
        silentUntil_.store(clock.now() + kPauseAfterTimeout, std::memory_order_relaxed);
    return found;
}

PortSlot<Biometrics>& Biometrics::slot() {
    static constinit PortSlot<Biometrics> slot;
    return slot;
}

std::shared_ptr<Biometrics> Biometrics::makeDefault() {
    return std::make_shared<FprintBiometrics>();
}

}  // namespace kx
