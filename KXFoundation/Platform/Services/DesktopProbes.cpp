// SPDX-License-Identifier: MIT

// What the message buses and the services behind them answer.
#include <algorithm>
#include <cstdint>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Semaphore.h>
#include <KXFoundation/Platform/Services/Biometrics.h>
#include <KXFoundation/Platform/Services/BusAddress.h>
#include <KXFoundation/Platform/Services/CapabilityProbes.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>
#include <KXFoundation/Platform/Services/DesktopOpener.h>
#include <KXFoundation/Platform/Services/KeychainChoice.h>
#include <KXFoundation/Platform/Services/StartedProgram.h>

namespace kx {

namespace {

std::uint32_t milliseconds(Patience patience) {
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(patience.count(), 0, 60'000));
}

constexpr const char* reasonFor(DesktopReply reply) {
    switch (reply) {
        case DesktopReply::Answered:
            return "answers";
        case DesktopReply::NoBus:
            return "nobody listens at the bus's address";
        case DesktopReply::NoService:
            return "the bus has no such service";
        case DesktopReply::Refused:
            return "the service refuses";
        case DesktopReply::TimedOut:
            return "no answer in time";
    }
    return "";
}

/// The service's part of the desktop's module, or why there is none to ask.
struct Opener {
    const DesktopOpener* table = nullptr;
    std::string bus, lack;

    Opener() {
        const auto address = sessionBusAddress();
        const DesktopModule* module = address ? desktopModule() : nullptr;
        if (!address) {
            lack = "the session names no bus";
        } else if (!module) {
            lack = "the module for desktop services is not installed";
        } else {
            table = module->opener;
            bus = *address;
        }
    }
};

std::string otherOpener() {
    const auto program = programInPath("xdg-open");
    return program ? "; addresses are opened with " + *program : "; nothing here can open addresses";
}

/// The keychain's own choice, which it makes once and in its own time: on another thread where the patience
/// is shorter than that.
std::optional<KeychainCapability> keychainCapabilityWithin(Patience patience) {
    if (patience >= kKeychainTimeout) return keychainCapability();
    struct Choosing {
        Semaphore done;
        KeychainCapability made;
    };
    const auto choosing = std::make_shared<Choosing>();
    DispatchQueue::shared().async([choosing] {
        choosing->made = keychainCapability();
        choosing->done.signal();
    });
    return choosing->done.waitFor(std::max(patience, Patience::zero())) ? std::optional(choosing->made)
                                                                        : std::nullopt;
}

}  // namespace

Capability probeBus(Patience patience) {
    const Opener opener;
    if (!opener.table) return {"bus", false, opener.lack};
    const DesktopReply reply = opener.table->reachBus(opener.bus.c_str(), milliseconds(patience));
    return {"bus", reply == DesktopReply::Answered, opener.bus + ": " + reasonFor(reply)};
}

Capability probeKeyring(Patience patience) {
    using Store = KeychainCapability::Store;
    const auto made = keychainCapabilityWithin(patience);
    if (!made) return {"keyring", false, reasonFor(DesktopReply::TimedOut)};
    const KeychainCapability& chosen = *made;
    if (chosen.store == Store::File) return {"keyring", true, "an encrypted file: " + chosen.why};
    return {"keyring", chosen.store != Store::None, chosen.why};
}

Capability probePortal(Patience patience) {
    const Opener opener;
    if (!opener.table) return {"portal", false, opener.lack + otherOpener()};
    std::uint32_t version = 0;
    const DesktopReply reply =
        opener.table->portalVersion(opener.bus.c_str(), milliseconds(patience), &version);
    if (reply != DesktopReply::Answered) return {"portal", false, reasonFor(reply) + otherOpener()};
    return {"portal", true, "opens addresses, version " + std::to_string(version)};
}

Capability probeBiometrics(Patience patience) {
    const auto type = Biometrics::slot().current().type(std::max(patience, Patience::zero()));
    if (!type) return {"biometrics", false, type.error().message()};
    const bool isThere = *type != BiometryType::None;
    return {"biometrics", isThere, isThere ? "a fingerprint reader" : "no fingerprint reader"};
}

}  // namespace kx
