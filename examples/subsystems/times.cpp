// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/DateTime/KXDateUtils.h>
#include <KXFoundation/DateTime/NSCalendar_CalendricalCalculations.h>
#include <KXFoundation/DateTime/NSDateFormatter_Standard.h>

using namespace kx;
using Days = NSCalendar_CalendricalCalculations;

int main() {
    const auto times = KXDateUtils::sharedInstance();
    std::printf("as the user writes it: %s\n", times->convertMinutesToTimeString(14 * 60 + 5)->c_str());
    std::printf("with 24 hours: %s\n", times->convertMinutesToTimeString(14 * 60 + 5, false, false)->c_str());

    const auto standard = NSDateFormatter_Standard::standardFormatter();  // UTC, whatever the user's settings
    const auto date = standard->dateFromString("2024-03-31 10:00:00");
    const auto show = [&](const char* what, const Days::Date& day) {
        std::printf("%s: %s\n", what, day ? standard->stringFromDate(day)->c_str() : "none");
    };
    show("one month earlier", Days::prevMonth(date));
    show("the week began", Days::firstDayInWeek(date));
    show("no date", Days::nextDay(standard->dateFromString("2024-02-30 10:00:00")));
    std::printf("%d rows of weeks, %d days\n", static_cast<int>(Days::totalWeekInMonth(date)),
                static_cast<int>(Days::totalDaysInMonth(date)));
}
