// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Platform/Foundation/NSCalendar.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Ready answers about days, weeks and months, computed with one shared calendar: Gregorian, weeks from
/// Sunday to Saturday, in the system's time zone at the first use. A date that is absent or beyond the years
/// that the calendar holds gives none, false or 0. No instances; any thread; nothing but texts allocates.
class KX_EXPORT NSCalendar_CalendricalCalculations {
  public:
    NSCalendar_CalendricalCalculations() = delete;

    using Date = std::optional<NSDate>;

    /// The shared calendar. Who changes it changes every answer.
    [[nodiscard]] static std::shared_ptr<NSCalendar> calculationCalendar();

    [[nodiscard]] static bool isDateInTheDayBeforeYesterday(const Date& date);
    [[nodiscard]] static bool isDateInTheDayAfterTomorrow(const Date& date);
    /// Weeks of one calendar year with one number, or the last days of a year and the first of the next in
    /// week 1 of that. The order of the two plays no part.
    [[nodiscard]] static bool isDateInSameWeekAsDate(const Date& date, const Date& other);
    [[nodiscard]] static bool isDateInSameDayAsDate(const Date& date, const Date& other);
    [[nodiscard]] static bool isDateInSameMonthAsDate(const Date& date, const Date& other);

    /// Year, month, day, hour, minute and second.
    [[nodiscard]] static NSDateComponents componentsFromDate(const Date& date);

    // One unit earlier or later. A day that does not exist becomes the month's last: 31 March less one month
    // is the last of February.
    [[nodiscard]] static Date prevHour(const Date& date) {
        return dateByAddingUnit(NSCalendarUnitHour, -1, date);
    }
    [[nodiscard]] static Date nextHour(const Date& date) {
        return dateByAddingUnit(NSCalendarUnitHour, 1, date);
    }
    [[nodiscard]] static Date prevDay(const Date& date) {
        return dateByAddingUnit(NSCalendarUnitDay, -1, date);
    }
    [[nodiscard]] static Date nextDay(const Date& date) {
        return dateByAddingUnit(NSCalendarUnitDay, 1, date);
    }
    [[nodiscard]] static Date prevWeek(const Date& date) {
        return dateByAddingUnit(NSCalendarUnitWeekOfYear, -1, date);
    }
    [[nodiscard]] static Date nextWeek(const Date& date) {
        return dateByAddingUnit(NSCalendarUnitWeekOfYear, 1, date);
    }
    [[nodiscard]] static Date prevMonth(const Date& date) {
        return dateByAddingUnit(NSCalendarUnitMonth, -1, date);
    }
    [[nodiscard]] static Date nextMonth(const Date& date) {
        return dateByAddingUnit(NSCalendarUnitMonth, 1, date);
    }

    /// 28 to 31.
    [[nodiscard]] static std::int64_t totalDaysInMonth(const Date& date);
    /// How many rows from Sunday to Saturday the month touches, 4 to 6.
    [[nodiscard]] static std::int64_t totalWeekInMonth(const Date& date);
    /// The column in which the month's first day stands: 0 for Sunday to 6 for Saturday.
    [[nodiscard]] static std::int64_t firstDayOfWeekInThisMonth(const Date& date);

    /// How many units lie between the starts of those that hold the two dates, negative if the second is
    /// earlier: from 23:59 to 00:01 of the next day it is one day. 0 for what is not one unit.
    [[nodiscard]] static std::int64_t numberOfUnit(NSCalendarUnit unit, const Date& fromDate,
                                                   const Date& toDate);
    [[nodiscard]] static Date dateByAddingUnit(NSCalendarUnit unit, std::int64_t value, const Date& toDate);

    /// "2024年 03月 05日"; none without a date.
    [[nodiscard]] static std::optional<std::string> dateStringFromDate(const Date& date);
    /// "2024年 03月 05日 14:07": of year, month, day, hour and minute those in the set. An absent record
    /// counts as one of zeros.
    [[nodiscard]] static std::string stringFromComponent(const std::optional<NSDateComponents>& components,
                                                         NSCalendarUnit componentUnit);

    // The date's day at hour 0 or 23, with its minute and second.
    [[nodiscard]] static Date firstHourIn(const Date& date);
    [[nodiscard]] static Date lastHourIn(const Date& date);
    // 00:00 of a day: Sunday and Saturday of the date's week, first and last of its month.
    [[nodiscard]] static Date firstDayInWeek(const Date& date);
    [[nodiscard]] static Date lastDayInWeek(const Date& date);
    [[nodiscard]] static Date firstDayInMonth(const Date& date);
    [[nodiscard]] static Date lastDayInMonth(const Date& date);
    /// 00:00:00 and 23:59:59 of the date's day.
    [[nodiscard]] static Date dateBegin(const Date& date);
    [[nodiscard]] static Date dateEnd(const Date& date);
};

}  // namespace kx
