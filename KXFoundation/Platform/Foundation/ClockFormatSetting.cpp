// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/ClockFormatSetting.h>

namespace kx {

PortSlot<ClockFormatSetting>& ClockFormatSetting::slot() {
    static constinit PortSlot<ClockFormatSetting> slot;
    return slot;
}

}  // namespace kx
