// SPDX-License-Identifier: MIT

// KXFoundation's queues and timers inside an application whose loop is Qt's.
#include <QCoreApplication>
#include <QSocketNotifier>
#include <cstdio>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>

int main(int argc, char** argv) {
    using namespace std::chrono_literals;
    const QCoreApplication application(argc, argv);
    const QSocketNotifier notifier(kx::EventLoop::main().descriptor(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [] { kx::EventLoop::main().drain(); });

    kx::DispatchQueue::shared().async([] {
        const auto label = kx::DispatchQueue::main().sync(&kx::DispatchQueue::currentQueueLabel);
        std::printf("a background block met the queue \"%.*s\"\n", static_cast<int>(label.size()),
                    label.data());
    });
    kx::DispatchQueue::main().after(100ms, [] {
        std::puts("a tenth of a second later");
        QCoreApplication::quit();
    });

    return QCoreApplication::exec();
}
