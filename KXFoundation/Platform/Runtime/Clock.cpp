// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/SystemClock.h>

namespace kx {

PortSlot<Clock>& Clock::slot() {
    static constinit PortSlot<Clock> slot;
    return slot;
}

std::shared_ptr<Clock> Clock::makeDefault() {
    return std::make_shared<SystemClock>();
}

}  // namespace kx
