// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

/// How the user wants the time of day written; Unset leaves it to the locale.
enum class ClockFormat : std::uint8_t { Unset, TwelveHour, TwentyFourHour };

/// The port of the desktop's own choice of 12 or 24 hours. The adapter (Services/DesktopClockFormat.cpp)
/// follows the desktop's setting; a test injects one.
class KX_EXPORT ClockFormatSetting {
  public:
    virtual ~ClockFormatSetting() = default;

    /// The setting now. Never waits: Unset until the desktop has answered. One atomic load; any thread.
    [[nodiscard]] virtual ClockFormat clockFormat() const noexcept = 0;

    static PortSlot<ClockFormatSetting>& slot();
    static std::shared_ptr<ClockFormatSetting> makeDefault();
};

}  // namespace kx
