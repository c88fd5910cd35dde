// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A unit of a calendar, or a set of them joined with "|". The values are stored by applications.
using NSCalendarUnit = std::uint64_t;
inline constexpr NSCalendarUnit NSCalendarUnitYear = 4;
inline constexpr NSCalendarUnit NSCalendarUnitMonth = 8;
inline constexpr NSCalendarUnit NSCalendarUnitDay = 16;
inline constexpr NSCalendarUnit NSCalendarUnitHour = 32;
inline constexpr NSCalendarUnit NSCalendarUnitMinute = 64;
inline constexpr NSCalendarUnit NSCalendarUnitSecond = 128;
inline constexpr NSCalendarUnit NSCalendarUnitWeekday = 512;
inline constexpr NSCalendarUnit NSCalendarUnitWeekOfMonth = 4096;
inline constexpr NSCalendarUnit NSCalendarUnitWeekOfYear = 8192;
inline constexpr NSCalendarUnit NSCalendarUnitYearForWeekOfYear = 16384;
inline constexpr NSCalendarUnit NSCalendarUnitNanosecond = 32768;

/// Marks a field of NSDateComponents that holds nothing.
inline constexpr std::int64_t NSDateComponentUndefined = INT64_MAX;

/// Fields of a date, each a number or undefined, of which a calendar makes instants. Any number may stand in
/// any field: 13 is the month after December. A plain value, 88 bytes.
class KX_EXPORT NSDateComponents {
  public:
    /// 0 for the year before year 1.
    [[nodiscard]] std::int64_t year() const noexcept { return year_; }
    [[nodiscard]] std::int64_t month() const noexcept { return month_; }
    [[nodiscard]] std::int64_t day() const noexcept { return day_; }
    [[nodiscard]] std::int64_t hour() const noexcept { return hour_; }
    [[nodiscard]] std::int64_t minute() const noexcept { return minute_; }
    [[nodiscard]] std::int64_t second() const noexcept { return second_; }
    /// Of a date, 0 to 999,999,999; as exact as an NSDate is, a tenth of a microsecond today.
    [[nodiscard]] std::int64_t nanosecond() const noexcept { return nanosecond_; }
    /// 1 for Sunday to 7 for Saturday.
    [[nodiscard]] std::int64_t weekday() const noexcept { return weekday_; }
    [[nodiscard]] std::int64_t weekOfMonth() const noexcept { return weekOfMonth_; }
    [[nodiscard]] std::int64_t weekOfYear() const noexcept { return weekOfYear_; }
    /// The year that weekOfYear() belongs to: the last days of December may be in week 1 of the next.
    [[nodiscard]] std::int64_t yearForWeekOfYear() const noexcept { return yearForWeekOfYear_; }

    void setYear(std::int64_t value) noexcept { year_ = value; }
    void setMonth(std::int64_t value) noexcept { month_ = value; }
    void setDay(std::int64_t value) noexcept { day_ = value; }
    void setHour(std::int64_t value) noexcept { hour_ = value; }
    void setMinute(std::int64_t value) noexcept { minute_ = value; }
    void setSecond(std::int64_t value) noexcept { second_ = value; }
    void setNanosecond(std::int64_t value) noexcept { nanosecond_ = value; }
    void setWeekday(std::int64_t value) noexcept { weekday_ = value; }
    void setWeekOfMonth(std::int64_t value) noexcept { weekOfMonth_ = value; }
    void setWeekOfYear(std::int64_t value) noexcept { weekOfYear_ = value; }
    void setYearForWeekOfYear(std::int64_t value) noexcept { yearForWeekOfYear_ = value; }

    /// The field of one unit; undefined for any other number.
    [[nodiscard]] std::int64_t valueForComponent(NSCalendarUnit unit) const noexcept;
    /// Does nothing for what is not one unit.
    void setValueForComponent(std::int64_t value, NSCalendarUnit unit) noexcept;

    bool operator==(const NSDateComponents&) const noexcept = default;

  private:
    std::int64_t year_ = NSDateComponentUndefined;
    std::int64_t month_ = NSDateComponentUndefined;
    std::int64_t day_ = NSDateComponentUndefined;
    std::int64_t hour_ = NSDateComponentUndefined;
    std::int64_t minute_ = NSDateComponentUndefined;
    std::int64_t second_ = NSDateComponentUndefined;
    std::int64_t nanosecond_ = NSDateComponentUndefined;
    std::int64_t weekday_ = NSDateComponentUndefined;
    std::int64_t weekOfMonth_ = NSDateComponentUndefined;
    std::int64_t weekOfYear_ = NSDateComponentUndefined;
    std::int64_t yearForWeekOfYear_ = NSDateComponentUndefined;

    [[nodiscard]] static std::int64_t NSDateComponents::*field(NSCalendarUnit unit) noexcept;
};

}  // namespace kx
