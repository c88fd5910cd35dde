// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Foundation/LocalTime.h>
#include <KXFoundation/Platform/Foundation/LocaleDates.h>
#include <KXFoundation/Platform/Foundation/NSCalendar.h>
#include <KXFoundation/Platform/Foundation/ZoneRules.h>

namespace kx {

namespace {

constexpr NSCalendarUnit kDateUnits = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;
constexpr NSCalendarUnit kWeekUnits =
    NSCalendarUnitWeekOfMonth | NSCalendarUnitWeekOfYear | NSCalendarUnitYearForWeekOfYear;
constexpr NSCalendarUnit kClockUnits = NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond;
// No field reaches this far inside the years held; sums of such fields are far from overflowing.
constexpr std::int64_t kLargestField = std::int64_t{1} << 46;

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kMostDays = 2 * kLastSecond / kSecondsPerDay;

/// A field's value, its first where it is undefined; absent if it is beyond all use.
std::optional<std::int64_t> fieldOr(std::int64_t first, std::int64_t value) noexcept {
    if (value == NSDateComponentUndefined) return first;
    if (value < -kLargestField || value > kLargestField) return std::nullopt;
    return value;
}

void addClockFields(NSDateComponents& fields, NSCalendarUnit units, std::int32_t second) noexcept {
    if (units & NSCalendarUnitHour) fields.setHour(second / 3600);
    if (units & NSCalendarUnitMinute) fields.setMinute(second / 60 % 60);
    if (units & NSCalendarUnitSecond) fields.setSecond(second % 60);
}

void addDateFields(NSDateComponents& fields, NSCalendarUnit units, const CivilDate& date) noexcept {
    if (units & NSCalendarUnitYear) fields.setYear(date.year);
    if (units & NSCalendarUnitMonth) fields.setMonth(date.month);
    if (units & NSCalendarUnitDay) fields.setDay(date.day);
}

/// The day of a lenient year, month and day; absent beyond the years held.
std::optional<std::int64_t> dayOf(const NSDateComponents& fields) noexcept {
    const auto year = fieldOr(1, fields.year());
    const auto month = fieldOr(1, fields.month());
    const auto day = fieldOr(1, fields.day());
    if (!year || !month || !day) return std::nullopt;
    const std::int64_t wholeYear = *year + floorDivide(*month - 1, 12);
    if (wholeYear < 2 * kFirstYear || wholeYear > 2 * kLastYear) return std::nullopt;
    return daysFromCivil(wholeYear, static_cast<int>(floorModulo(*month - 1, 12)) + 1, 1) + *day - 1;
}

/// The seconds of a lenient hour, minute and second.
std::optional<std::int64_t> secondOf(const NSDateComponents& fields) noexcept {
    const auto hour = fieldOr(0, fields.hour());
    const auto minute = fieldOr(0, fields.minute());
    const auto second = fieldOr(0, fields.second());
    if (!hour || !minute || !second) return std::nullopt;
    return *hour * 3600 + *minute * 60 + *second;
}

bool hasDateOrTime(const NSDateComponents& fields) noexcept {
    return std::min({fields.year(), fields.month(), fields.day(), fields.hour(), fields.minute(),
                     fields.second()}) != NSDateComponentUndefined;
}

}  // namespace

std::shared_ptr<NSCalendar> NSCalendar::initWithCalendarIdentifier(
    std::optional<std::string_view> identifier) {
    return make<NSCalendar>(identifier);
}

bool NSCalendar::init(std::optional<std::string_view> identifier) {
    if (identifier != NSCalendarIdentifierGregorian) return false;
    setTimeZone(nullptr);
    setLocale(nullptr);
    return Super::init();
}

void NSCalendar::setTimeZone(std::shared_ptr<NSTimeZone> zone) {
    zone_ = zone ? std::move(zone) : NSTimeZone::systemTimeZone();
}

void NSCalendar::setLocale(std::shared_ptr<NSLocale> locale) {
    locale_ = locale ? std::move(locale) : NSLocale::currentLocale();
    firstWeekday_ = LocaleDates::of(locale_->localeIdentifier())->firstWeekday();
}

void NSCalendar::setFirstWeekday(std::int64_t weekday) noexcept {
    if (weekday >= 1 && weekday <= 7) firstWeekday_ = weekday;
}

std::optional<std::int64_t> NSCalendar::localSeconds(const std::optional<NSDate>& date) const noexcept {
    const auto utc = wholeSeconds(date);
    if (!utc) return std::nullopt;
    return *utc + zone_->rules().offsetAt(*utc);
}

/// 0 for the first day of a week to 6 for the last.
std::int64_t NSCalendar::columnOf(std::int64_t day) const noexcept {
    return floorModulo(weekdayFromDays(day) - firstWeekday_, 7);
}

NSDateComponents NSCalendar::components(NSCalendarUnit units, const std::optional<NSDate>& date) const {
    NSDateComponents fields;
    const auto local = localSeconds(date);
    if (!local) return fields;
    const DayAndSecond time(*local);
    if (units & kClockUnits) addClockFields(fields, units, time.second);
    if (units & kDateUnits) addDateFields(fields, units, civilFromDays(time.day));
    if (units & NSCalendarUnitWeekday) fields.setWeekday(weekdayFromDays(time.day));
    if (units & kWeekUnits) addWeekFields(fields, units, time.day);
    if (units & NSCalendarUnitNanosecond) {
        const double seconds = date->timeIntervalSince1970();
        const double fraction = seconds - std::floor(seconds);
        fields.setNanosecond(static_cast<std::int64_t>(fraction * 1e9));
    }
    return fields;
}

/// With one minimum day, a week belongs to the year of its last day.
std::int64_t NSCalendar::weekYearOf(std::int64_t day) const noexcept {
    return civilFromDays(day - columnOf(day) + 6).year;
}

std::int64_t NSCalendar::weekYearStart(std::int64_t year) const noexcept {
    const std::int64_t yearStart = daysFromCivil(year, 1, 1);
    return yearStart - columnOf(yearStart);
}

void NSCalendar::addWeekFields(NSDateComponents& fields, NSCalendarUnit units,
                               std::int64_t day) const noexcept {
    const std::int64_t lastOfWeek = day - columnOf(day) + 6;
    const std::int64_t weekYear = civilFromDays(lastOfWeek).year;
    if (units & NSCalendarUnitYearForWeekOfYear) fields.setYearForWeekOfYear(weekYear);
    if (units & NSCalendarUnitWeekOfYear)
        fields.setWeekOfYear((lastOfWeek - daysFromCivil(weekYear, 1, 1)) / 7 + 1);
    if (units & NSCalendarUnitWeekOfMonth) {
        const std::int64_t dayOfMonth = civilFromDays(day).day;
        fields.setWeekOfMonth((dayOfMonth - 1 + columnOf(day - dayOfMonth + 1)) / 7 + 1);
    }
}

std::optional<NSDate> NSCalendar::dateFromComponents(
    const std::optional<NSDateComponents>& components) const {
    if (!components || !hasDateOrTime(*components)) return std::nullopt;
    const auto day = dayOf(*components);
    const auto second = secondOf(*components);
    if (!day || !second || *day < -kMostDays || *day > kMostDays) return std::nullopt;
    const std::int64_t nanosecond =
        components->nanosecond() == NSDateComponentUndefined ? 0 : components->nanosecond();
    const std::int64_t local =
        *day * kSecondsPerDay + *second + floorDivide(nanosecond, kNanosecondsPerSecond);
    const auto date = NSDate::dateWithTimeIntervalSince1970(
        static_cast<double>(zone_->rules().instantsAt(local).before) +
        static_cast<double>(floorModulo(nanosecond, kNanosecondsPerSecond)) * 1e-9);
    return wholeSeconds(date) ? std::optional(date) : std::nullopt;
}

bool NSCalendar::isDateInSameDayAsDate(const std::optional<NSDate>& date,
                                       const std::optional<NSDate>& other) const {
    const auto one = localSeconds(date);
    const auto two = localSeconds(other);
    return one && two && DayAndSecond(*one).day == DayAndSecond(*two).day;
}

int NSCalendar::WallTime::weekday() const noexcept {
    return weekdayFromDays(day);
}

std::optional<NSCalendar::WallTime> NSCalendar::wallTime(const std::optional<NSDate>& date) const noexcept {
    const auto local = localSeconds(date);
    if (!local) return std::nullopt;
    const DayAndSecond time(*local);
    return WallTime{time.day, time.second};
}

std::optional<NSDate> NSCalendar::dateFromWallTime(WallTime time) const noexcept {
    if (time.day < -kMostDays || time.day > kMostDays) return std::nullopt;
    const std::int64_t utc = zone_->rules().instantsAt(time.day * kSecondsPerDay + time.second).before;
    if (utc < kFirstSecond || utc > kLastSecond) return std::nullopt;
    return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(utc));
}

std::uint64_t NSCalendar::ordinalityOfUnit(NSCalendarUnit smaller, NSCalendarUnit larger,
                                           const std::optional<NSDate>& date) const {
    const auto local = localSeconds(date);
    const bool isWeek = larger == NSCalendarUnitWeekOfMonth || larger == NSCalendarUnitWeekOfYear;
    if (!local || smaller != NSCalendarUnitWeekday || !isWeek) return 0;
    return static_cast<std::uint64_t>(columnOf(DayAndSecond(*local).day)) + 1;
}

}  // namespace kx
