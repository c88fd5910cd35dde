// SPDX-License-Identifier: MIT

#include <KXFoundation/DateTime/NSDateComponents_Standard.h>

namespace kx {

namespace {

/// Wraps around where a product of 64 bits does not hold it.
std::uint64_t secondsIn(std::int64_t field, std::uint64_t length) noexcept {
    return field == NSDateComponentUndefined ? 0 : static_cast<std::uint64_t>(field) * length;
}

}  // namespace

void NSDateComponents_Standard::updateWithDateComponents(
    NSDateComponents* receiver, const std::optional<NSDateComponents>& components) noexcept {
    if (!receiver) return;
    for (const NSCalendarUnit unit : {NSCalendarUnitYear, NSCalendarUnitMonth, NSCalendarUnitDay,
                                      NSCalendarUnitHour, NSCalendarUnitMinute, NSCalendarUnitSecond}) {
        receiver->setValueForComponent(components ? components->valueForComponent(unit) : 0, unit);
    }
}

double NSDateComponents_Standard::timeIntervalInDay(
    const std::optional<NSDateComponents>& components) noexcept {
    if (!components) return 0;
    return static_cast<double>(static_cast<std::int64_t>(secondsIn(components->hour(), 3600) +
                                                         secondsIn(components->minute(), 60) +
                                                         secondsIn(components->second(), 1)));
}

}  // namespace kx
