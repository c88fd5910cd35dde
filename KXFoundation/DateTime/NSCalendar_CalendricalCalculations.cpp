#include <KXFoundation/DateTime/NSCalendar_CalendricalCalculations.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

using Calculations = NSCalendar_CalendricalCalculations;
using Date = Calculations::Date;

constexpr NSCalendarUnit kMonth = NSCalendarUnitYear | NSCalendarUnitMonth;
constexpr NSCalendarUnit kDay = kMonth | NSCalendarUnitDay;
constexpr NSCalendarUnit kDayOfWeek = kDay | NSCalendarUnitWeekday;
constexpr NSCalendarUnit kSecond = kDay | NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond;
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

/// The date with some of its fields changed; none where it has no fields.
template <class Change>
Date changed(NSCalendarUnit units, Date date, Change change) {
    NSDateComponents fields = calendar().components(units, date);
    if (fields.year() == NSDateComponentUndefined) return std::nullopt;
    change(fields);
    return calendar().dateFromComponents(fields);
}

Date withTime(Date date, std::int64_t hour, std::int64_t minute, std::int64_t second) {
    return changed(kSecond, date, [&](NSDateComponents& fields) {
        fields.setHour(hour);
        fields.setMinute(minute);
        fields.setSecond(second);
    });
}

Date withHour(Date date, std::int64_t hour) {
    return changed(kSecond, date, [&](NSDateComponents& fields) { fields.setHour(hour); });
}

Date withWeekday(Date date, std::int64_t weekday) {
    return changed(kDayOfWeek, date, [&](NSDateComponents& fields) {
        fields.setDay(fields.day() - fields.weekday() + weekday);
    });
}

Date withDay(Date date, std::int64_t day) {
    return changed(kDay, date, [&](NSDateComponents& fields) { fields.setDay(day); });
}

}  // namespace

std::shared_ptr<NSCalendar> Calculations::calculationCalendar() {
    return shared.get().calendar;
}

bool Calculations::isDateInTheDayBeforeYesterday(Date date) {
    return isDateInSameDayAsDate(date, prevDay(prevDay(NSDate::date())));
}

bool Calculations::isDateInTheDayAfterTomorrow(Date date) {
    return isDateInSameDayAsDate(date, nextDay(nextDay(NSDate::date())));
}

bool Calculations::isDateInSameWeekAsDate(Date date, Date other) {
    if (!date || !other) return false;
    const auto later = calendar().components(kWeek, date->laterDate(*other));
    const auto earlier = calendar().components(kWeek, date->earlierDate(*other));
    if (later.year() == NSDateComponentUndefined || earlier.year() == NSDateComponentUndefined) return false;
    if (later.year() == earlier.year() && later.weekOfYear() == earlier.weekOfYear()) return true;
    return later.year() - earlier.year() == 1 && later.weekOfYear() == 1 &&
           later.year() == earlier.yearForWeekOfYear();
}

bool Calculations::isDateInSameDayAsDate(Date date, Date other) {
    return calendar().isDateInSameDayAsDate(date, other);
}

bool Calculations::isDateInSameMonthAsDate(Date date, Date other) {
    const auto one = calendar().components(kMonth, date);
    return one.year() != NSDateComponentUndefined && one == calendar().components(kMonth, other);
}

NSDateComponents Calculations::componentsFromDate(Date date) {
    return calendar().components(kSecond, date);
}

Date Calculations::prevHour(Date date) {
    return dateByAddingUnit(NSCalendarUnitHour, -1, date);
}
Date Calculations::nextHour(Date date) {
    return dateByAddingUnit(NSCalendarUnitHour, 1, date);
}
Date Calculations::prevDay(Date date) {
    return dateByAddingUnit(NSCalendarUnitDay, -1, date);
}
Date Calculations::nextDay(Date date) {
    return dateByAddingUnit(NSCalendarUnitDay, 1, date);
}
Date Calculations::prevWeek(Date date) {
    return dateByAddingUnit(NSCalendarUnitWeekOfYear, -1, date);
}
Date Calculations::nextWeek(Date date) {
    return dateByAddingUnit(NSCalendarUnitWeekOfYear, 1, date);
}
Date Calculations::prevMonth(Date date) {
    return dateByAddingUnit(NSCalendarUnitMonth, -1, date);
}
Date Calculations::nextMonth(Date date) {
    return dateByAddingUnit(NSCalendarUnitMonth, 1, date);
}

std::int64_t Calculations::totalDaysInMonth(Date date) {
    return static_cast<std::int64_t>(
        calendar().rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, date).length);
}

std::int64_t Calculations::totalWeekInMonth(Date date) {
    return static_cast<std::int64_t>(
        calendar().rangeOfUnit(NSCalendarUnitWeekOfMonth, NSCalendarUnitMonth, date).length);
}

std::int64_t Calculations::firstDayOfWeekInThisMonth(Date date) {
    const Date first = changed(kSecond, date, [](NSDateComponents& fields) { fields.setDay(1); });
    const auto ordinal = calendar().ordinalityOfUnit(NSCalendarUnitWeekday, NSCalendarUnitWeekOfMonth, first);
    return ordinal == 0 ? 0 : static_cast<std::int64_t>(ordinal) - 1;
}

std::int64_t Calculations::numberOfUnit(NSCalendarUnit unit, Date fromDate, Date toDate) {
    auto from = NSDate::dateWithTimeIntervalSince1970(0);
    auto to = from;
    if (!calendar().rangeOfUnit(unit, &from, nullptr, fromDate)) return 0;
    if (!calendar().rangeOfUnit(unit, &to, nullptr, toDate)) return 0;
    return calendar().components(unit, from, to).valueForComponent(unit);
}

Date Calculations::dateByAddingUnit(NSCalendarUnit unit, std::int64_t value, Date toDate) {
    return calendar().dateByAddingUnit(unit, value, toDate);
}

Date Calculations::firstHourIn(Date date) {
    return withHour(date, 0);
}
Date Calculations::lastHourIn(Date date) {
    return withHour(date, 23);
}
Date Calculations::dateBegin(Date date) {
    return withTime(date, 0, 0, 0);
}
Date Calculations::dateEnd(Date date) {
    return withTime(date, 23, 59, 59);
}
Date Calculations::firstDayInWeek(Date date) {
    return withWeekday(date, 1);
}
Date Calculations::lastDayInWeek(Date date) {
    return withWeekday(date, 7);
}
Date Calculations::firstDayInMonth(Date date) {
    return withDay(date, 1);
}
Date Calculations::lastDayInMonth(Date date) {
    return withDay(date, totalDaysInMonth(date));
}

}  // namespace kx
