// SPDX-License-Identifier: MIT

// The part of NSCalendar that measures months.
#include <cstdlib>

#include <KXFoundation/Platform/Foundation/LocalTime.h>
#include <KXFoundation/Platform/Foundation/NSCalendar.h>
#include <KXFoundation/Platform/Foundation/ZoneRules.h>

namespace kx {

namespace {

// Farther than clocks ever jump, and than they are from UTC.
constexpr std::int64_t kFarthestJump = 4 * kSecondsPerDay;

}  // namespace

/// A month whose ends no change of clocks crosses: it is one stretch of time, and each question about a date
/// in it is answered by what stands here.
struct NSCalendar::KnownMonth {
    std::uint64_t zone = 0;   // serial of its rules; 0 for no month
    double from = 0, to = 0;  // seconds from 1970
    double lastDay = 0;       // where that begins
    MonthDays days{};

    static constinit thread_local KnownMonth last;
};

// The initial-exec model spares a call per access inside a shared library.
constinit thread_local NSCalendar::KnownMonth NSCalendar::KnownMonth::last
    __attribute__((tls_model("initial-exec")));

inline const NSCalendar::KnownMonth* NSCalendar::knownMonth(
    const std::optional<NSDate>& date) const noexcept {
    if (!date) return nullptr;
    const KnownMonth& last = KnownMonth::last;
    const double seconds = date->timeIntervalSince1970();
    const bool isLast = last.zone == zone_->rules().serial() && seconds >= last.from && seconds < last.to;
    return isLast ? &last : learnMonth(*date);
}

inline NSCalendar::MonthDays NSCalendar::monthOfDay(std::int64_t day) noexcept {
    const CivilDate civil = civilFromDays(day);
    const std::int64_t first = day - civil.day + 1;
    return {first, daysInMonth(civil.year, civil.month), weekdayFromDays(first)};
}

inline std::optional<NSCalendar::MonthDays> NSCalendar::measuredMonth(
    const std::optional<NSDate>& date) const noexcept {
    const auto local = localSeconds(date);
    return local ? std::optional(monthOfDay(DayAndSecond(*local).day)) : std::nullopt;
}

/// None if the month has to be looked at date by date.
const NSCalendar::KnownMonth* NSCalendar::learnMonth(NSDate date) const noexcept {
    const auto utc = wholeSeconds(date);
    if (!utc) return nullptr;
    const auto around = zone_->rules().surroundingsOf(*utc);
    const std::int64_t local = *utc + around.offset[1];
    const MonthDays days = monthOfDay(DayAndSecond(local).day);
    const std::int64_t begin = days.first * kSecondsPerDay, end = begin + days.length * kSecondsPerDay;
    const auto isCrossed = [&](std::int64_t localChange, std::int32_t former, std::int32_t next) {
        // What the clocks skip or show twice ends at that time.
        const std::int64_t start = localChange - std::abs(next - former);
        return (start < begin && localChange > begin) || (start < end && localChange > end);
    };
    const auto& [from, to, offset, change] = around;
    const bool isWhole = change[0] <= change[1] && from <= begin - kFarthestJump &&
                         to >= end + kFarthestJump && begin - kFarthestJump >= kFirstSecond &&
                         end + kFarthestJump <= kLastSecond;
    if (!isWhole || isCrossed(change[0], offset[0], offset[1]) || isCrossed(change[1], offset[1], offset[2]))
        return nullptr;
    const auto instant = [&](std::int64_t at) { return static_cast<double>(at - around.offsetAtLocal(at)); };
    KnownMonth::last = {zone_->rules().serial(), instant(begin), instant(end), instant(end - kSecondsPerDay),
                        days};
    return &KnownMonth::last;
}

inline std::optional<NSCalendar::MonthDays> NSCalendar::monthDays(
    const std::optional<NSDate>& date) const noexcept {
    const KnownMonth* const known = knownMonth(date);
    return known ? std::optional(known->days) : measuredMonth(date);
}

std::optional<NSDate> NSCalendar::firstDayOfMonth(const std::optional<NSDate>& date) const noexcept {
    if (const KnownMonth* known = knownMonth(date)) return NSDate::dateWithTimeIntervalSince1970(known->from);
    const auto days = measuredMonth(date);
    return days ? dateFromWallTime({days->first, 0}) : std::nullopt;
}

std::optional<NSDate> NSCalendar::lastDayOfMonth(const std::optional<NSDate>& date) const noexcept {
    if (const KnownMonth* known = knownMonth(date))
        return NSDate::dateWithTimeIntervalSince1970(known->lastDay);
    const auto days = measuredMonth(date);
    return days ? dateFromWallTime({days->first + days->length - 1, 0}) : std::nullopt;
}

inline std::int64_t NSCalendar::columnOf(const MonthDays& month) const noexcept {
    const std::int64_t column = month.weekday - firstWeekday_;
    return column < 0 ? column + 7 : column;
}

std::int64_t NSCalendar::daysBeforeMonth(const std::optional<NSDate>& date) const noexcept {
    const auto days = monthDays(date);
    return days ? columnOf(*days) : 0;
}

NSRange NSCalendar::rangeOfUnit(NSCalendarUnit smaller, NSCalendarUnit larger,
                                const std::optional<NSDate>& date) const {
    if (larger != NSCalendarUnitMonth) return {};
    const auto days = monthDays(date);
    if (!days) return {};
    const auto length = static_cast<std::uint64_t>(days->length);
    if (smaller == NSCalendarUnitDay) return {1, length};
    const auto column = static_cast<std::uint64_t>(columnOf(*days));
    return smaller == NSCalendarUnitWeekOfMonth ? NSRange{1, (column + length + 6) / 7} : NSRange();
}

}  // namespace kx
