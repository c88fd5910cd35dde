// SPDX-License-Identifier: MIT

#include <chrono>
#include <cstdio>

#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Platform/Foundation/NotificationName.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>

using namespace kx;

inline constinit const NotificationName<double> VolumeDidChange{"VolumeDidChange"};

int main() {
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    auto token = VolumeDidChange.observe([&](double volume) {  // on the thread that posts
        std::printf("the volume is %.1f, on the queue \"%s\"\n", volume,
                    std::string(DispatchQueue::currentQueueLabel()).c_str());
        defaults.setObject("volume", volume);
    });

    const auto work = DispatchQueue::serial("org.example.work");
    work->async([] { VolumeDidChange.post(0.5); });
    work->async([] {
        DispatchQueue::main().async([] { VolumeDidChange.post(0.8); });
        DispatchQueue::main().after(std::chrono::milliseconds(10), [] { EventLoop::main().stop(); });
    });
    EventLoop::main().run();

    token.remove();
    VolumeDidChange.post(0.1);  // nobody listens any more
    std::printf("kept: %.1f, in the file: %s\n", *defaults.objectForKey("volume").asReal(),
                defaults.synchronize() ? "yes" : "no");
}
