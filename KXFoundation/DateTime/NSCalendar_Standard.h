// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <KXFoundation/Platform/Foundation/NSCalendar.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A calendar that depends on nobody's settings. No instances; any thread.
class KX_EXPORT NSCalendar_Standard {
  public:
    NSCalendar_Standard() = delete;

    /// The shared Gregorian calendar in UTC. Who changes it changes it for all.
    [[nodiscard]] static std::shared_ptr<NSCalendar> standardCalendar();

    /// Year, month, day, hour, minute and second that many seconds after what the components mean to the
    /// calendar; after 1970-01-01T00:00:00Z if they mean no instant. All undefined without a calendar, and
    /// beyond the years it holds.
    [[nodiscard]] static NSDateComponents dateComponentsByAddSeconds(
        const std::shared_ptr<NSCalendar>& calendar, const std::optional<NSDateComponents>& components,
        std::int64_t seconds);
};

}  // namespace kx
