// SPDX-License-Identifier: MIT

#include "BusThread.h"

#include <utility>

namespace kx {

void BusThread::start(const char* name, std::function<void()> steps) {
    steps_ = std::move(steps);
    const auto run = [](void* self) -> void* {
        static_cast<BusThread*>(self)->run();
        return nullptr;
    };
    thread_ = g_thread_new(name, run, this);
}

void BusThread::run() {
    g_main_context_push_thread_default(context_);
    steps_();
    g_main_context_pop_thread_default(context_);
}

BusThread::~BusThread() {
    g_cancellable_cancel(cancellable_);
    endLoop();
    if (thread_) g_thread_join(thread_);
    g_object_unref(cancellable_);
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
}

void BusThread::perform(std::function<void()> step) {
    using Step = std::function<void()>;
    const auto run = [](void* given) -> gboolean {
        (*static_cast<Step*>(given))();
        return G_SOURCE_REMOVE;
    };
    GSource* const source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(source, run, new Step(std::move(step)),
                          [](void* given) { delete static_cast<Step*>(given); });
    g_source_attach(source, context_);
    g_source_unref(source);
}

}  // namespace kx
