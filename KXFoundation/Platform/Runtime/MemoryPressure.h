// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

/// The port of the system's memory pressure: tells who holds what can be had again to give some of it up. The
/// adapter waits on the kernel's pressure file (/proc/pressure/memory), on a thread of its own that is made
/// with the first observer and sleeps while there is no pressure; without that file nothing is ever told. Any
/// thread.
class KX_EXPORT MemoryPressure {
  public:
    using Observer = std::function<void()>;

    virtual ~MemoryPressure() = default;

    /// Calls the observer under pressure, at most about once in two seconds, as long as the token lives; on
    /// the thread that saw it, so the observer is short. A call that has begun may outlast the token.
    [[nodiscard]] virtual std::shared_ptr<void> observe(Observer observer) = 0;

    static PortSlot<MemoryPressure>& slot();
    static std::shared_ptr<MemoryPressure> makeDefault();
};

}  // namespace kx
