// The part of NSCalendar that measures months.
#include <KXFoundation/Platform/Foundation/LocalTime.h>
#include <KXFoundation/Platform/Foundation/NSCalendar.h>
#include <KXFoundation/Platform/Foundation/ZoneRules.h>

namespace kx {

namespace {

// Clocks never jump further, so that a change of clocks this far inside a month leads nobody out of it.
constexpr std::int64_t kFarthestJump = 4 * kSecondsPerDay;

}  // namespace

/// A month of a zone without a change of clocks near its two ends: it is one stretch of time, and each
/// question about a date in it is answered by what stands here.
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

std::optional<NSCalendar::MonthDays> NSCalendar::measuredMonth(
    const std::optional<NSDate>& date) const noexcept {
    const auto local = localSeconds(date);
    if (!local) return std::nullopt;
    const std::int64_t day = DayAndSecond(*local).day;
    const CivilDate civil = civilFromDays(day);
    return MonthDays{day - civil.day + 1, daysInMonth(civil.year, civil.month)};
}

/// None if the month has to be looked at date by date.
const NSCalendar::KnownMonth* NSCalendar::learnMonth(NSDate date) const noexcept {
    const auto days = measuredMonth(date);
    if (!days) return nullptr;
    const ZoneRules& rules = zone_->rules();
    const std::int64_t begin = days->first * kSecondsPerDay, end = begin + days->length * kSecondsPerDay;
    const auto first = rules.steadyOffset(begin - kFarthestJump, begin + kFarthestJump);
    const auto last = rules.steadyOffset(end - kFarthestJump, end + kFarthestJump);
    const bool isHeld = begin - kFarthestJump >= kFirstSecond && end + kFarthestJump <= kLastSecond;
    if (!first || !last || !isHeld) return nullptr;
    const auto seconds = [](std::int64_t local, std::int32_t offset) {
        return static_cast<double>(local - offset);
    };
    KnownMonth::last = {rules.serial(), seconds(begin, *first), seconds(end, *last),
                        seconds(end - kSecondsPerDay, *last), *days};
    return &KnownMonth::last;
}

std::optional<NSCalendar::MonthDays> NSCalendar::monthDays(const std::optional<NSDate>& date) const noexcept {
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

std::int64_t NSCalendar::daysBeforeMonth(const std::optional<NSDate>& date) const noexcept {
    const auto days = monthDays(date);
    return days ? columnOf(days->first) : 0;
}

NSRange NSCalendar::rangeOfUnit(NSCalendarUnit smaller, NSCalendarUnit larger,
                                const std::optional<NSDate>& date) const {
    if (larger != NSCalendarUnitMonth) return {};
    const auto days = monthDays(date);
    if (!days) return {};
    const auto length = static_cast<std::uint64_t>(days->length);
    if (smaller == NSCalendarUnitDay) return {1, length};
    const auto column = static_cast<std::uint64_t>(columnOf(days->first));
    return smaller == NSCalendarUnitWeekOfMonth ? NSRange{1, (column + length + 6) / 7} : NSRange();
}

}  // namespace kx
