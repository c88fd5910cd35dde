// SPDX-License-Identifier: MIT

#include "pages/CalendarPage.h"

#include <KXFoundation/DateTime/NSCalendar_CalendricalCalculations.h>
#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Platform/Foundation/NSDateFormatter.h>
#include <KXFoundation/Platform/Views/NSButton.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

using Dates = NSCalendar_CalendricalCalculations;
using Day = std::optional<NSDate>;

std::shared_ptr<NSLocale> shownLocale() {
    return NSLocale::localeWithLocaleIdentifier(KXLocalizationUtils::selectLanguage());
}

/// Writes dates in the language of the application, whatever the system's is.
std::shared_ptr<NSDateFormatter> formatter(std::string_view pattern) {
    auto made = make<NSDateFormatter>();
    made->setLocale(shownLocale());
    made->setDateFormat(pattern);
    return made;
}

std::string monthAndYear(const Day& day) {
    const auto pattern = NSDateFormatter::dateFormatFromTemplate("yMMMM", 0, shownLocale());
    return formatter(pattern.value_or(""))->stringFromDate(day).value_or("");
}

/// A calendar whose weeks begin on the locale's first weekday; that of NSCalendar_CalendricalCalculations
/// begins them on Sunday.
std::shared_ptr<NSCalendar> shownCalendar() {
    auto calendar = make<NSCalendar>();
    calendar->setLocale(shownLocale());
    return calendar;
}

std::shared_ptr<NSTextField> heading(std::string_view weekday) {
    auto name = label(weekday, 12, true);
    name->setAlignment(NSTextAlignment::Center);
    return name;
}

}  // namespace

void CalendarPage::addMonth(Column& column, Gallery& gallery) {
    const auto calendar = shownCalendar();
    const Day first = Dates::firstDayInMonth(chosen_);
    const auto blanks = static_cast<std::int64_t>(
        calendar->ordinalityOfUnit(NSCalendarUnitWeekday, NSCalendarUnitWeekOfMonth, first) - 1);
    std::vector<std::shared_ptr<NSView>> cells;
    const auto weekday = formatter("ccc"), number = formatter("d");
    for (std::int64_t i = 0; i < 7; ++i) {
        const Day day = Dates::dateByAddingUnit(NSCalendarUnitDay, i - blanks, first);
        cells.push_back(heading(weekday->stringFromDate(day).value_or("")));
    }
    for (std::int64_t i = 0; i < blanks; ++i) cells.push_back(make<NSView>());
    // Each day is counted from the first: after a midnight that the clocks skip, day by day would stay later.
    const std::int64_t days = Dates::totalDaysInMonth(chosen_);
    for (std::int64_t i = 0; i < days; ++i) {
        const Day day = Dates::dateByAddingUnit(NSCalendarUnitDay, i, first);
        auto cell = make<NSButton>();
        cell->setTitle(number->stringFromDate(day));
        cell->setDefaultButton(Dates::isDateInSameDayAsDate(day, chosen_));
        cell->setAction([this, &gallery, day](NSControl&) {
            chosen_ = day;
            gallery.rebuild();
        });
        cells.push_back(cell);
    }
    column.grid(cells, 7, 26, 6);
}

void CalendarPage::addAnswers(Column& column) const {
    const auto label = [](const Day& day) { return Dates::dateStringFromDate(day).value_or(""); };
    const NSDate today = NSDate::date();
    column.pair(text("calendar.chosen"), label(chosen_));
    column.pair(text("calendar.distance"),
                std::to_string(Dates::numberOfUnit(NSCalendarUnitDay, today, chosen_)));
    column.pair(text("calendar.week"),
                label(Dates::firstDayInWeek(chosen_)) + " \u2013 " + label(Dates::lastDayInWeek(chosen_)));
    column.pair(text("calendar.month"),
                label(Dates::firstDayInMonth(chosen_)) + " \u2013 " + label(Dates::lastDayInMonth(chosen_)));
    column.pair(text("calendar.days"), std::to_string(Dates::totalDaysInMonth(chosen_)));
    column.pair(text("calendar.weeks"), std::to_string(Dates::totalWeekInMonth(chosen_)));
    column.pair(text("calendar.column"), std::to_string(Dates::firstDayOfWeekInThisMonth(chosen_)));
}

void CalendarPage::build(Column& column, Gallery& gallery) {
    const auto goTo = [this, &gallery](Day (*step)(const Day&)) {
        return [this, &gallery, step] {
            if (const Day day = step(chosen_)) chosen_ = day;
            gallery.rebuild();
        };
    };
    column.title(text("calendar.title"));
    column.paragraph(text("calendar.explanation"));
    column.space(8);
    column.row({pushButton("calendar.previous", goTo(Dates::prevMonth)),
                pushButton("calendar.today", goTo([](const Day&) -> Day { return NSDate::date(); })),
                pushButton("calendar.next", goTo(Dates::nextMonth))});
    column.caption(monthAndYear(chosen_));
    addMonth(column, gallery);
    column.space(4);
    addAnswers(column);
}

}  // namespace gallery
