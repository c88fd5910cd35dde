// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSDate.h>
#include <KXFoundation/Platform/Foundation/NSDateComponents.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Platform/Foundation/NSRange.h>
#include <KXFoundation/Platform/Foundation/NSTimeZone.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// The Gregorian calendar, for all of time (it knows no Julian one before 1582).
inline constexpr std::string_view NSCalendarIdentifierGregorian = "gregorian";

/// Converts between instants and the fields of a date in one time zone, and steps from unit to unit.
///
/// Holds the years -999,999 to 999,999; an instant beyond them, or an absent one, gives none, undefined
/// fields, 0 or false. Where the clocks go forward, a time that they skip is as much later as they jump
/// (02:30 becomes 03:30); where they go back, a time that comes twice is the first one. The first week of a
/// year or month is the one that holds its first day, in every locale.
///
/// Any number of threads may ask at a time; settings are changed by one alone. Asking allocates nothing.
class KX_EXPORT NSCalendar : public Subclass<NSCalendar, NSObject> {
  public:
    /// None for another identifier than NSCalendarIdentifierGregorian.
    [[nodiscard]] static std::shared_ptr<NSCalendar> initWithCalendarIdentifier(
        std::optional<std::string_view> identifier);
    /// With the user's locale and time zone.
    bool init(std::optional<std::string_view> identifier = NSCalendarIdentifierGregorian);

    /// The fields of the date for a set of units; the others are undefined, all of them where there is no
    /// answer.
    [[nodiscard]] NSDateComponents components(NSCalendarUnit units, const std::optional<NSDate>& date) const;
    /// The difference of two dates in the units of the set, from the largest (year, month, week, day, hour,
    /// minute, second) on each as many whole ones as fit; negative if `to` is earlier. Days and what is
    /// larger are counted on the wall clock, so that a day with a change of clocks is one day.
    [[nodiscard]] NSDateComponents components(NSCalendarUnit units, const std::optional<NSDate>& from,
                                              const std::optional<NSDate>& to) const;
    /// A moment on the wall clock, for code that changes a date's day or time of day.
    struct WallTime {
        std::int64_t day;     ///< from 1970-01-01
        std::int32_t second;  ///< of the day, 0 to 86,399

        /// 1 for Sunday to 7 for Saturday.
        [[nodiscard]] KX_EXPORT int weekday() const noexcept;
    };
    /// What the wall clock shows at the date, without the fraction of its second.
    [[nodiscard]] std::optional<WallTime> wallTime(const std::optional<NSDate>& date) const noexcept;
    /// The instant at which it shows that. A second beyond the day's end counts on into the next day.
    [[nodiscard]] std::optional<NSDate> dateFromWallTime(WallTime time) const noexcept;

    // What a page of a calendar asks of a month. A thread remembers the last one that it was asked about, so
    // that further questions about it cost a few nanoseconds. 00:00 of its first and its last day:
    [[nodiscard]] std::optional<NSDate> firstDayOfMonth(const std::optional<NSDate>& date) const noexcept;
    [[nodiscard]] std::optional<NSDate> lastDayOfMonth(const std::optional<NSDate>& date) const noexcept;
    /// How many days of its first week lie before the month: 0 to 6.
    [[nodiscard]] std::int64_t daysBeforeMonth(const std::optional<NSDate>& date) const noexcept;

    /// The instant of year, month, day, hour, minute, second and nanosecond; other fields are not looked at.
    /// An undefined one counts as its first (year 1, 1 January, 00:00:00); none if all are. Lenient: a field
    /// out of range rolls into the next larger unit, so day 0 is the last one of the month before.
    [[nodiscard]] std::optional<NSDate> dateFromComponents(
        const std::optional<NSDateComponents>& components) const;

    /// Adds years and months first, on a day that exists (31 March less one month is the last of February);
    /// then years of weeks, which keep the week's number (week 53 becomes the last one of a shorter year) and
    /// the weekday; then weeks and days, all at the same time of day; then hours and less as they pass. A
    /// step back from after a skipped day leads before it.
    [[nodiscard]] std::optional<NSDate> dateByAddingComponents(const NSDateComponents& components,
                                                               const std::optional<NSDate>& date) const;
    /// None for what is not one unit.
    [[nodiscard]] std::optional<NSDate> dateByAddingUnit(NSCalendarUnit unit, std::int64_t value,
                                                         const std::optional<NSDate>& date) const;

    [[nodiscard]] bool isDateInSameDayAsDate(const std::optional<NSDate>& date,
                                             const std::optional<NSDate>& other) const;

    /// How often the smaller unit comes in the larger one that holds the date: days or weeks (of month) of a
    /// month. The location is 1. Nothing for other pairs.
    [[nodiscard]] NSRange rangeOfUnit(NSCalendarUnit smaller, NSCalendarUnit larger,
                                      const std::optional<NSDate>& date) const;
    /// Which one the smaller unit is in the larger one, from 1: the weekday in its week. 0 for other pairs.
    [[nodiscard]] std::uint64_t ordinalityOfUnit(NSCalendarUnit smaller, NSCalendarUnit larger,
                                                 const std::optional<NSDate>& date) const;
    /// Where the unit that holds the date begins, and its length in seconds; either pointer may be null.
    /// False, with both left alone, if there is no answer.
    bool rangeOfUnit(NSCalendarUnit unit, NSDate* startDate, double* interval,
                     const std::optional<NSDate>& date) const;

    [[nodiscard]] std::string_view calendarIdentifier() const noexcept {
        return NSCalendarIdentifierGregorian;
    }
    [[nodiscard]] const std::shared_ptr<NSTimeZone>& timeZone() const noexcept { return zone_; }
    /// None stands for the system's.
    void setTimeZone(std::shared_ptr<NSTimeZone> zone);
    [[nodiscard]] const std::shared_ptr<NSLocale>& locale() const noexcept { return locale_; }
    /// Also takes over the locale's first weekday. None stands for the user's.
    void setLocale(std::shared_ptr<NSLocale> locale);
    /// 1 for Sunday to 7 for Saturday.
    [[nodiscard]] std::int64_t firstWeekday() const noexcept { return firstWeekday_; }
    /// A number that is no weekday changes nothing.
    void setFirstWeekday(std::int64_t weekday) noexcept;
    [[nodiscard]] std::int64_t minimumDaysInFirstWeek() const noexcept { return 1; }

  private:
    [[nodiscard]] std::optional<std::int64_t> localSeconds(const std::optional<NSDate>& date) const noexcept;
    [[nodiscard]] std::int64_t columnOf(std::int64_t day) const noexcept;
    [[nodiscard]] std::int64_t weekYearOf(std::int64_t day) const noexcept;
    [[nodiscard]] std::int64_t weekYearStart(std::int64_t year) const noexcept;
    [[nodiscard]] std::int64_t daysInWeekYears(std::int64_t day, std::int64_t years) const noexcept;
    [[nodiscard]] std::int64_t unitsBetween(NSCalendarUnit unit, std::int64_t from,
                                            std::int64_t to) const noexcept;
    void addWeekFields(NSDateComponents& fields, NSCalendarUnit units, std::int64_t day) const noexcept;
    struct Days {
        std::int64_t first, next;
    };
    [[nodiscard]] std::optional<Days> daysOfUnit(NSCalendarUnit unit, std::int64_t day) const noexcept;
    struct MonthDays {
        std::int64_t first;  // from 1970-01-01
        std::int64_t length;
        std::int64_t weekday;  // of the first one
    };
    struct KnownMonth;
    [[nodiscard]] static MonthDays monthOfDay(std::int64_t day) noexcept;
    [[nodiscard]] std::int64_t columnOf(const MonthDays& month) const noexcept;
    [[nodiscard]] const KnownMonth* knownMonth(const std::optional<NSDate>& date) const noexcept;
    [[nodiscard]] const KnownMonth* learnMonth(NSDate date) const noexcept;
    [[nodiscard]] std::optional<MonthDays> measuredMonth(const std::optional<NSDate>& date) const noexcept;
    [[nodiscard]] std::optional<MonthDays> monthDays(const std::optional<NSDate>& date) const noexcept;
    [[nodiscard]] std::int64_t firstInstantOf(std::int64_t day) const noexcept;
    [[nodiscard]] std::int64_t nominalSeconds(std::int64_t utc) const noexcept;
    [[nodiscard]] std::int64_t moved(std::int64_t utc, std::int64_t months, std::int64_t days) const noexcept;
    [[nodiscard]] std::int64_t startOfClockUnit(std::int64_t utc, std::int64_t length) const noexcept;

    std::shared_ptr<NSLocale> locale_;
    std::shared_ptr<NSTimeZone> zone_;
    std::int64_t firstWeekday_ = 1;
};

}  // namespace kx
