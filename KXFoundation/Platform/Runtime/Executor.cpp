// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Runtime/ThreadExecutor.h>

namespace kx {

PortSlot<Executor>& Executor::slot() {
    static constinit PortSlot<Executor> slot;
    return slot;
}

std::shared_ptr<Executor> Executor::makeDefault() {
    return std::make_shared<ThreadExecutor>();
}

void drainQueues() {
    Executor::slot().current().drain();
}

}  // namespace kx
