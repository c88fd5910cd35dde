// SPDX-License-Identifier: MIT

// The part of NSCalendar that goes from one date to another: adding, counting what lies between, and where
// units begin.
#include <algorithm>
#include <array>
#include <cstdlib>

#include <KXFoundation/Platform/Foundation/LocalTime.h>
#include <KXFoundation/Platform/Foundation/NSCalendar.h>
#include <KXFoundation/Platform/Foundation/ZoneRules.h>

namespace kx {

namespace {

// A longer step leaves the years held in any unit of a second and more.
constexpr std::int64_t kLongestStep = std::int64_t{1} << 46;
constexpr std::int64_t kMostMonths = std::int64_t{12} * 2 * kLastYear;
constexpr std::int64_t kMostDays = 2 * kLastSecond / kSecondsPerDay;

/// What adding a record of fields means.
struct Step {
    std::int64_t months = 0;
    std::int64_t weekYears = 0;
    std::int64_t days = 0;
    std::int64_t seconds = 0;
    double fraction = 0;
};

std::int64_t monthsIn(NSCalendarUnit unit) noexcept {
    if (unit == NSCalendarUnitYear) return 12;
    return unit == NSCalendarUnitMonth ? 1 : 0;
}

std::int64_t daysIn(NSCalendarUnit unit) noexcept {
    if (unit == NSCalendarUnitWeekOfMonth || unit == NSCalendarUnitWeekOfYear) return 7;
    return unit == NSCalendarUnitDay || unit == NSCalendarUnitWeekday ? 1 : 0;
}

std::int64_t secondsIn(NSCalendarUnit unit) noexcept {
    if (unit == NSCalendarUnitHour) return 3600;
    if (unit == NSCalendarUnitMinute) return 60;
    return unit == NSCalendarUnitSecond ? 1 : 0;
}

/// From the largest on, as differences are counted.
constexpr std::array kUnits{NSCalendarUnitYear,        NSCalendarUnitYearForWeekOfYear,
                            NSCalendarUnitMonth,       NSCalendarUnitWeekOfYear,
                            NSCalendarUnitWeekOfMonth, NSCalendarUnitDay,
                            NSCalendarUnitWeekday,     NSCalendarUnitHour,
                            NSCalendarUnitMinute,      NSCalendarUnitSecond};

std::optional<Step> stepOf(const NSDateComponents& fields) noexcept {
    Step step;
    for (const NSCalendarUnit unit : kUnits) {
        const std::int64_t value = fields.valueForComponent(unit);
        if (value == NSDateComponentUndefined) continue;
        if (value < -kLongestStep || value > kLongestStep) return std::nullopt;
        step.months += value * monthsIn(unit);
        if (unit == NSCalendarUnitYearForWeekOfYear) step.weekYears = value;
        step.days += value * daysIn(unit);
        step.seconds += value * secondsIn(unit);
    }
    if (fields.nanosecond() != NSDateComponentUndefined)
        step.fraction = static_cast<double>(fields.nanosecond()) * 1e-9;
    const bool isInside = std::abs(step.months) <= kMostMonths && std::abs(step.weekYears) <= 2 * kLastYear &&
                          std::abs(step.days) <= kMostDays;
    return isInside ? std::optional(step) : std::nullopt;
}

/// The day that many months later, or the last one of a shorter month.
std::int64_t addMonths(std::int64_t day, std::int64_t months) noexcept {
    const CivilDate civil = civilFromDays(day);
    const std::int64_t month = civil.year * 12 + civil.month - 1 + months;
    const std::int64_t year = floorDivide(month, 12);
    const auto monthOfYear = static_cast<int>(floorModulo(month, 12)) + 1;
    return daysFromCivil(year, monthOfYear, std::min(civil.day, daysInMonth(year, monthOfYear)));
}

std::int64_t movedLocally(std::int64_t local, std::int64_t months, std::int64_t days) noexcept {
    const DayAndSecond start(local);
    return (addMonths(start.day, months) + days) * kSecondsPerDay + start.second;
}

/// A count of units by their names, less one if the last of them is not over.
std::int64_t wholeOnes(std::int64_t count, std::int64_t reached, std::int64_t to) noexcept {
    if (count > 0 && reached > to) return count - 1;
    return count < 0 && reached < to ? count + 1 : count;
}

/// Whole months from one local time to another.
std::int64_t monthsBetween(std::int64_t from, std::int64_t to) noexcept {
    const CivilDate first = civilFromDays(DayAndSecond(from).day);
    const CivilDate last = civilFromDays(DayAndSecond(to).day);
    const std::int64_t months = (last.year - first.year) * 12 + last.month - first.month;
    return wholeOnes(months, movedLocally(from, months, 0), to);
}

}  // namespace

/// The days to the same week and weekday, that many years of weeks later; to the last week of a shorter year.
std::int64_t NSCalendar::daysInWeekYears(std::int64_t day, std::int64_t years) const noexcept {
    if (years == 0) return 0;
    const std::int64_t year = weekYearOf(day), passed = day - weekYearStart(year);
    const std::int64_t start = weekYearStart(year + years);
    const std::int64_t lastWeek = weekYearStart(year + years + 1) - start - 7;
    return start + std::min(passed, lastWeek + passed % 7) - day;
}

/// Whole years, months, weeks or days from one local time to another.
std::int64_t NSCalendar::unitsBetween(NSCalendarUnit unit, std::int64_t from,
                                      std::int64_t to) const noexcept {
    if (const std::int64_t months = monthsIn(unit)) return monthsBetween(from, to) / months;
    if (const std::int64_t days = daysIn(unit)) return (to - from) / (days * kSecondsPerDay);
    const std::int64_t day = DayAndSecond(from).day;
    const std::int64_t years = weekYearOf(DayAndSecond(to).day) - weekYearOf(day);
    return wholeOnes(years, movedLocally(from, 0, daysInWeekYears(day, years)), to);
}

/// The same time of day, months and days away.
std::int64_t NSCalendar::moved(std::int64_t utc, std::int64_t months, std::int64_t days) const noexcept {
    const DayAndSecond local(utc + zone_->rules().offsetAt(utc));
    const std::int64_t day = (months == 0 ? local.day : addMonths(local.day, months)) + days;
    if (day == local.day) return utc;  // and of two times alike it stays the one it was
    const auto instants = zone_->rules().instantsAt(day * kSecondsPerDay + local.second);
    const bool isStuck = day < local.day && instants.before >= utc;
    return isStuck ? instants.after : instants.before;
}

std::optional<NSDate> NSCalendar::dateByAddingComponents(const NSDateComponents& components,
                                                         const std::optional<NSDate>& date) const {
    const auto utc = wholeSeconds(date);
    const auto step = stepOf(components);
    if (!utc || !step) return std::nullopt;
    std::int64_t days = step->days;
    if (step->weekYears != 0) {
        const std::int64_t day = DayAndSecond(*utc + zone_->rules().offsetAt(*utc)).day;
        days += daysInWeekYears(addMonths(day, step->months), step->weekYears);
    }
    const std::int64_t whole = moved(*utc, step->months, days) - *utc + step->seconds;
    const NSDate result = date->dateByAddingTimeInterval(static_cast<double>(whole) + step->fraction);
    return wholeSeconds(result) ? std::optional(result) : std::nullopt;
}

std::optional<NSDate> NSCalendar::dateByAddingUnit(NSCalendarUnit unit, std::int64_t value,
                                                   const std::optional<NSDate>& date) const {
    NSDateComponents step;
    step.setValueForComponent(value, unit);
    return step == NSDateComponents() ? std::nullopt : dateByAddingComponents(step, date);
}

std::int64_t NSCalendar::firstInstantOf(std::int64_t day) const noexcept {
    const auto instants = zone_->rules().instantsAt(day * kSecondsPerDay);
    return instants.isSkipped() ? instants.change : instants.before;
}

/// Local seconds, 00:00 for the first instant of a day that begins later.
std::int64_t NSCalendar::nominalSeconds(std::int64_t utc) const noexcept {
    const std::int64_t local = utc + zone_->rules().offsetAt(utc);
    const std::int64_t day = DayAndSecond(local).day;
    return firstInstantOf(day) == utc ? day * kSecondsPerDay : local;
}

/// Both dates count by the fraction of the first one's second: from 0.9 to 1.1 no second has passed.
NSDateComponents NSCalendar::components(NSCalendarUnit units, const std::optional<NSDate>& from,
                                        const std::optional<NSDate>& to) const {
    NSDateComponents difference;
    const auto start = wholeSeconds(from);
    if (!start || !wholeSeconds(to)) return difference;
    const std::int64_t end = *start + static_cast<std::int64_t>(to->timeIntervalSinceDate(*from));
    const bool isForward = *start <= end;
    std::int64_t instant = *start;
    std::int64_t local = nominalSeconds(*start);
    const std::int64_t localEnd = nominalSeconds(end);
    for (const NSCalendarUnit unit : kUnits) {
        if (!(units & unit)) continue;
        std::int64_t count =
            secondsIn(unit) ? (end - instant) / secondsIn(unit) : unitsBetween(unit, local, localEnd);
        // The wall clock may show less on the later of two dates, where it went back between them.
        if (isForward ? count < 0 : count > 0) count = 0;
        const std::int64_t months = count * monthsIn(unit);
        const std::int64_t weekYears = unit == NSCalendarUnitYearForWeekOfYear ? count : 0;
        const std::int64_t days = count * daysIn(unit) + daysInWeekYears(DayAndSecond(local).day, weekYears);
        local = movedLocally(local, months, days);
        instant = moved(instant, months, days) + count * secondsIn(unit);
        difference.setValueForComponent(count, unit);
    }
    return difference;
}

/// Where the hour, minute or second begins that the wall clock shows.
std::int64_t NSCalendar::startOfClockUnit(std::int64_t utc, std::int64_t length) const noexcept {
    const ZoneRules& rules = zone_->rules();
    const std::int32_t offset = rules.offsetAt(utc);
    const std::int64_t start = floorDivide(utc + offset, length) * length;
    // An hour that the clocks cut began by another offset.
    if (rules.offsetAt(start - offset) == offset) return start - offset;
    const auto instants = rules.instantsAt(start);
    return instants.isSkipped() ? instants.change : instants.before;
}

/// The days from the first one of the unit that holds the day up to the first one of the next unit.
std::optional<NSCalendar::Days> NSCalendar::daysOfUnit(NSCalendarUnit unit, std::int64_t day) const noexcept {
    const std::int64_t week = day - columnOf(day);
    const CivilDate civil = civilFromDays(day);
    const auto yearStart = [](std::int64_t year) { return daysFromCivil(year, 1, 1); };
    switch (unit) {
        case NSCalendarUnitYear:
            return Days{yearStart(civil.year), yearStart(civil.year + 1)};
        case NSCalendarUnitYearForWeekOfYear: {
            const std::int64_t year = weekYearOf(day);
            return Days{weekYearStart(year), weekYearStart(year + 1)};
        }
        case NSCalendarUnitMonth:
            return Days{day - civil.day + 1, day - civil.day + 1 + daysInMonth(civil.year, civil.month)};
        case NSCalendarUnitWeekOfMonth:
        case NSCalendarUnitWeekOfYear:
            return Days{week, week + 7};
        case NSCalendarUnitDay:
        case NSCalendarUnitWeekday:
            return Days{day, day + 1};
        default:
            return std::nullopt;
    }
}

bool NSCalendar::rangeOfUnit(NSCalendarUnit unit, NSDate* startDate, double* interval,
                             const std::optional<NSDate>& date) const {
    const auto utc = wholeSeconds(date);
    if (!utc) return false;
    std::int64_t start = 0;
    std::int64_t length = secondsIn(unit);
    if (length != 0) {
        start = startOfClockUnit(*utc, length);
    } else {
        const auto days = daysOfUnit(unit, DayAndSecond(*utc + zone_->rules().offsetAt(*utc)).day);
        if (!days) return false;
        start = firstInstantOf(days->first);
        length = firstInstantOf(days->next) - start;
    }
    if (startDate) *startDate = NSDate::dateWithTimeIntervalSince1970(static_cast<double>(start));
    if (interval) *interval = static_cast<double>(length);
    return true;
}

}  // namespace kx
