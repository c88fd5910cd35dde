// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/NSDateComponents.h>

namespace kx {

std::int64_t NSDateComponents::*NSDateComponents::field(NSCalendarUnit unit) noexcept {
    static constexpr struct {
        NSCalendarUnit unit;
        std::int64_t NSDateComponents::*field;
    } kFields[] = {
        {NSCalendarUnitYear, &NSDateComponents::year_},
        {NSCalendarUnitMonth, &NSDateComponents::month_},
        {NSCalendarUnitDay, &NSDateComponents::day_},
        {NSCalendarUnitHour, &NSDateComponents::hour_},
        {NSCalendarUnitMinute, &NSDateComponents::minute_},
        {NSCalendarUnitSecond, &NSDateComponents::second_},
        {NSCalendarUnitNanosecond, &NSDateComponents::nanosecond_},
        {NSCalendarUnitWeekday, &NSDateComponents::weekday_},
        {NSCalendarUnitWeekOfMonth, &NSDateComponents::weekOfMonth_},
        {NSCalendarUnitWeekOfYear, &NSDateComponents::weekOfYear_},
        {NSCalendarUnitYearForWeekOfYear, &NSDateComponents::yearForWeekOfYear_},
    };
    for (const auto& row : kFields) {
        if (row.unit == unit) return row.field;
    }
    return nullptr;
}

std::int64_t NSDateComponents::valueForComponent(NSCalendarUnit unit) const noexcept {
    const auto found = field(unit);
    return found ? this->*found : NSDateComponentUndefined;
}

void NSDateComponents::setValueForComponent(std::int64_t value, NSCalendarUnit unit) noexcept {
    if (const auto found = field(unit)) this->*found = value;
}

}  // namespace kx
