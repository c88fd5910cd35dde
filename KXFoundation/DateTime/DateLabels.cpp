// SPDX-License-Identifier: MIT

// The labels of NSCalendar_CalendricalCalculations: their unit characters are Chinese in every language.
#include <cinttypes>
#include <cstdio>

#include <KXFoundation/DateTime/NSCalendar_CalendricalCalculations.h>

namespace kx {

namespace {

template <class... Numbers>
void append(std::string& text, const char* format, Numbers... numbers) {
    char part[64];
    const int length = std::snprintf(part, sizeof part, format, numbers...);
    text.append(part, static_cast<std::size_t>(length));
}

NSDateComponents zeros() {
    NSDateComponents fields;
    for (const NSCalendarUnit unit : {NSCalendarUnitYear, NSCalendarUnitMonth, NSCalendarUnitDay,
                                      NSCalendarUnitHour, NSCalendarUnitMinute}) {
        fields.setValueForComponent(0, unit);
    }
    return fields;
}

}  // namespace

std::optional<std::string> NSCalendar_CalendricalCalculations::dateStringFromDate(const Date& date) {
    const NSDateComponents fields = componentsFromDate(date);
    if (fields.year() == NSDateComponentUndefined) return std::nullopt;
    return stringFromComponent(fields, NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay);
}

std::string NSCalendar_CalendricalCalculations::stringFromComponent(
    const std::optional<NSDateComponents>& components, NSCalendarUnit componentUnit) {
    const NSDateComponents fields = components ? *components : zeros();
    const auto holds = [&](NSCalendarUnit unit) { return (componentUnit & unit) != 0; };
    std::string text;
    if (holds(NSCalendarUnitYear)) append(text, "%04" PRId64 "年 ", fields.year());
    if (holds(NSCalendarUnitMonth)) append(text, "%02" PRId64 "月 ", fields.month());
    if (holds(NSCalendarUnitDay)) append(text, "%02" PRId64 "日 ", fields.day());
    if (holds(NSCalendarUnitHour) && holds(NSCalendarUnitMinute)) {
        append(text, "%02" PRId64 ":%02" PRId64 " ", fields.hour(), fields.minute());
    } else if (holds(NSCalendarUnitHour)) {
        append(text, "%02" PRId64 "时 ", fields.hour());
    } else if (holds(NSCalendarUnitMinute)) {
        append(text, "%02" PRId64 "分 ", fields.minute());
    }
    if (text.ends_with(' ')) text.pop_back();
    return text;
}

}  // namespace kx
