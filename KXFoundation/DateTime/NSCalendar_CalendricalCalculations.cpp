// SPDX-License-Identifier: MIT

#include <KXFoundation/DateTime/NSCalendar_CalendricalCalculations.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

using Calculations = NSCalendar_CalendricalCalculations;
using Date = Calculations::Date;

constexpr NSCalendarUnit kMonth = NSCalendarUnitYear | NSCalendarUnitMonth;
constexpr NSCalendarUnit kSecond =
    kMonth | NSCalendarUnitDay | NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond;
constexpr NSCalendarUnit kWeek =
    NSCalendarUnitYear | NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear;

struct Shared {
    std::shared_ptr<NSCalendar> calendar =
        NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
    Shared() { calendar->setFirstWeekday(1); }
};

constinit ProcessState<Shared> shared;

const NSCalendar& calendar() {
    return *shared.get().calendar;
}

// The boundaries below change some fields of a date and make an instant of them again. The fields are not
// spelled out for it: on the wall clock's own count of days and seconds the same change is one sum.
using WallTime = NSCalendar::WallTime;

template <class Change>
Date changed(const Date& date, Change change) {
    const auto time = calendar().wallTime(date);
    return time ? calendar().dateFromWallTime(change(*time)) : std::nullopt;
}

std::int32_t secondOf(int hour, int minute, int second) {
    return hour * 3600 + minute * 60 + second;
}

Date withHour(const Date& date, int hour) {
    return changed(date, [=](WallTime time) {
        return WallTime{time.day, secondOf(hour, 0, time.second % 3600)};
    });
}

Date withTime(const Date& date, std::int32_t second) {
    return changed(date, [=](WallTime time) { return WallTime{time.day, second}; });
}

Date withWeekday(const Date& date, int weekday) {
    return changed(date, [=](WallTime time) { return WallTime{time.day - time.weekday() + weekday, 0}; });
}

}  // namespace

std::shared_ptr<NSCalendar> Calculations::calculationCalendar() {
    return shared.get().calendar;
}

bool Calculations::isDateInTheDayBeforeYesterday(const Date& date) {
    return isDateInSameDayAsDate(date, prevDay(prevDay(NSDate::date())));
}

bool Calculations::isDateInTheDayAfterTomorrow(const Date& date) {
    return isDateInSameDayAsDate(date, nextDay(nextDay(NSDate::date())));
}

bool Calculations::isDateInSameWeekAsDate(const Date& date, const Date& other) {
    if (!date || !other) return false;
    const auto later = calendar().components(kWeek, date->laterDate(*other));
    const auto earlier = calendar().components(kWeek, date->earlierDate(*other));
    if (later.year() == NSDateComponentUndefined || earlier.year() == NSDateComponentUndefined) return false;
    if (later.year() == earlier.year() && later.weekOfYear() == earlier.weekOfYear()) return true;
    return later.year() - earlier.year() == 1 && later.weekOfYear() == 1 &&
           later.year() == earlier.yearForWeekOfYear();
}

bool Calculations::isDateInSameDayAsDate(const Date& date, const Date& other) {
    return calendar().isDateInSameDayAsDate(date, other);
}

bool Calculations::isDateInSameMonthAsDate(const Date& date, const Date& other) {
    const auto one = calendar().components(kMonth, date);
    return one.year() != NSDateComponentUndefined && one == calendar().components(kMonth, other);
}

NSDateComponents Calculations::componentsFromDate(const Date& date) {
    return calendar().components(kSecond, date);
}

std::int64_t Calculations::totalDaysInMonth(const Date& date) {
    return static_cast<std::int64_t>(
        calendar().rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, date).length);
}

std::int64_t Calculations::totalWeekInMonth(const Date& date) {
    return static_cast<std::int64_t>(
        calendar().rangeOfUnit(NSCalendarUnitWeekOfMonth, NSCalendarUnitMonth, date).length);
}

std::int64_t Calculations::firstDayOfWeekInThisMonth(const Date& date) {
    return calendar().daysBeforeMonth(date);
}

std::int64_t Calculations::numberOfUnit(NSCalendarUnit unit, const Date& fromDate, const Date& toDate) {
    auto from = NSDate::dateWithTimeIntervalSince1970(0);
    auto to = from;
    if (!calendar().rangeOfUnit(unit, &from, nullptr, fromDate)) return 0;
    if (!calendar().rangeOfUnit(unit, &to, nullptr, toDate)) return 0;
    return calendar().components(unit, from, to).valueForComponent(unit);
}

Date Calculations::dateByAddingUnit(NSCalendarUnit unit, std::int64_t value, const Date& toDate) {
    return calendar().dateByAddingUnit(unit, value, toDate);
}

Date Calculations::firstHourIn(const Date& date) {
    return withHour(date, 0);
}
Date Calculations::lastHourIn(const Date& date) {
    return withHour(date, 23);
}
Date Calculations::dateBegin(const Date& date) {
    return withTime(date, 0);
}
Date Calculations::dateEnd(const Date& date) {
    return withTime(date, secondOf(23, 59, 59));
}
Date Calculations::firstDayInWeek(const Date& date) {
    return withWeekday(date, 1);
}
Date Calculations::lastDayInWeek(const Date& date) {
    return withWeekday(date, 7);
}
Date Calculations::firstDayInMonth(const Date& date) {
    return calendar().firstDayOfMonth(date);
}
Date Calculations::lastDayInMonth(const Date& date) {
    return calendar().lastDayOfMonth(date);
}

}  // namespace kx
