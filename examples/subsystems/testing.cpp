// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedPlatform.h>
#include <KXFoundation/Testing/SimulatedWorld.h>

using namespace kx;
using namespace kx::testing;

/// A process of its own: nothing is read from, or left on, this machine.
void askLikeAFrenchUser() {
    ScopedPlatform platform;
    platform.bundle().addStrings("fr", {{"greeting", "Bonjour"}});
    platform.locale().setPreferredLanguages({"fr-CA"});
    NSUserDefaults::standardUserDefaults().setObject("visits", 3);
    NSUserDefaults::standardUserDefaults().synchronize();
    platform.restart();
    std::printf("%s, visit %d\n", localized("greeting").c_str(),
                static_cast<int>(*NSUserDefaults::standardUserDefaults().objectForKey("visits").asInteger()));
}

/// Two steps that are meant to follow each other, in a thousand orders: how many of them break it?
int brokenOrders() {
    int broken = 0;
    for (std::uint64_t seed = 0; seed < 1000; ++seed) {
        SimulatedWorld world(seed);
        bool isOpen = false;
        DispatchQueue::shared().async([&] { isOpen = true; });
        DispatchQueue::shared().async([&] { broken += isOpen ? 0 : 1; });
        world.run();
    }
    return broken;
}

int main() {
    askLikeAFrenchUser();
    const CapturedLog log;
    callerError("Harbour: number 7 of 3");
    std::printf("the log: %s\n", log.lines().at(0).c_str());
    std::printf("the order of two blocks on the shared queue is %s\n", brokenOrders() ? "not kept" : "kept");
}
