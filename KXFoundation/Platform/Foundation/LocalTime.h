// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include <KXFoundation/Platform/Foundation/CivilDate.h>
#include <KXFoundation/Platform/Foundation/NSDate.h>

/// Instants in whole seconds, and what clock and calendar show at them. Private to Foundation.
namespace kx {

/// Years that calendars hold, in which year 0 precedes year 1.
inline constexpr std::int64_t kFirstYear = -999'999;
inline constexpr std::int64_t kLastYear = 999'999;
inline constexpr std::int64_t kFirstSecond = daysFromCivil(kFirstYear, 1, 1) * kSecondsPerDay;
inline constexpr std::int64_t kLastSecond = daysFromCivil(kLastYear + 1, 1, 1) * kSecondsPerDay - 1;

/// The last whole second at or before the date, counted from 1970; absent if a calendar cannot hold it.
[[nodiscard]] inline std::optional<std::int64_t> wholeSeconds(const std::optional<NSDate>& date) noexcept {
    if (!date) return std::nullopt;
    const double seconds = date->timeIntervalSince1970();
    if (!(seconds >= kFirstSecond && seconds < static_cast<double>(kLastSecond + 1))) return std::nullopt;
    const auto truncated = static_cast<std::int64_t>(seconds);
    return truncated - (static_cast<double>(truncated) > seconds);
}

/// Local seconds as a day and the second in it.
struct DayAndSecond {
    std::int64_t day;  ///< from 1970-01-01
    std::int32_t second;

    explicit constexpr DayAndSecond(std::int64_t local) noexcept
        : day(floorDivide(local, kSecondsPerDay)),
          second(static_cast<std::int32_t>(local - day * kSecondsPerDay)) {}
};

}  // namespace kx
