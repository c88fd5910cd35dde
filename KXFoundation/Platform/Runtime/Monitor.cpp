// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Monitor.h>
#include <KXFoundation/Platform/Runtime/SideRecord.h>

namespace kx {

Monitor::Monitor(NSObject& object) : lock_(sideRecord(object).monitor) {}

}  // namespace kx
