// SPDX-License-Identifier: MIT

#include <KXFoundation/DateTime/NSCalendar_Standard.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

struct Shared {
    std::shared_ptr<NSCalendar> calendar =
        NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
    Shared() { calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC")); }
};

constinit ProcessState<Shared> shared;

}  // namespace

std::shared_ptr<NSCalendar> NSCalendar_Standard::standardCalendar() {
    return shared.get().calendar;
}

NSDateComponents NSCalendar_Standard::dateComponentsByAddSeconds(
    const std::shared_ptr<NSCalendar>& calendar, const std::optional<NSDateComponents>& components,
    std::int64_t seconds) {
    if (!calendar) return {};
    const auto start = calendar->dateFromComponents(components);
    const double sum = (start ? start->timeIntervalSince1970() : 0) + static_cast<double>(seconds);
    return calendar->components(NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay |
                                    NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond,
                                NSDate::dateWithTimeIntervalSince1970(sum));
}

}  // namespace kx
