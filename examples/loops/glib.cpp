// SPDX-License-Identifier: MIT

// KXFoundation's queues and timers inside an application whose loop is GLib's.
#include <cstdio>

#include <glib-unix.h>
#include <glib.h>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>

namespace {

gboolean drain(gint, GIOCondition, gpointer) {
    kx::EventLoop::main().drain();
    return G_SOURCE_CONTINUE;
}

}  // namespace

int main() {
    using namespace std::chrono_literals;
    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    g_unix_fd_add(kx::EventLoop::main().descriptor(), G_IO_IN, drain, nullptr);

    kx::DispatchQueue::shared().async([] {
        const auto label = kx::DispatchQueue::main().sync(&kx::DispatchQueue::currentQueueLabel);
        std::printf("a background block met the queue \"%.*s\"\n", static_cast<int>(label.size()),
                    label.data());
    });
    kx::DispatchQueue::main().after(100ms, [loop] {
        std::puts("a tenth of a second later");
        g_main_loop_quit(loop);
    });

    g_main_loop_run(loop);
    g_main_loop_unref(loop);
}
