// SPDX-License-Identifier: MIT

#include <cmath>

#include <gtest/gtest.h>

#include <KXFoundation/DateTime/NSCalendar_CalendricalCalculations.h>
#include <KXFoundation/DateTime/NSDateFormatter_Standard.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

using Calculations = NSCalendar_CalendricalCalculations;
using Date = Calculations::Date;
using Step = Date (*)(const Date&);

/// A fresh process in a time zone.
struct Place : testing::ScopedPlatform {
    explicit Place(const char* zone = "UTC") { setTimeZone(zone); }
};

/// "2024-03-05 14:07:00" in the calculation calendar's zone.
Date at(const char* text) {
    const auto utc = make<NSCalendar>();
    utc->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
    const auto date = NSDateFormatter_Standard::standardFormatter()->dateFromString(text);
    return Calculations::calculationCalendar()->dateFromComponents(utc->components(252, date));
}

std::string text(Date date) {
    if (!date) return "none";
    auto formatter = make<NSDateFormatter>();
    formatter->setTimeZone(Calculations::calculationCalendar()->timeZone());
    formatter->setDateFormat("yyyy-MM-dd HH:mm:ss");
    return *formatter->stringFromDate(date);
}

TEST(CalendricalCalculations, StepsAndBoundaries) {
    const std::tuple<Step, const char*, const char*> rows[] = {
        {Calculations::nextHour, "2024-12-31 23:30:00", "2025-01-01 00:30:00"},
        {Calculations::prevHour, "2024-03-01 00:30:00", "2024-02-29 23:30:00"},
        {Calculations::nextDay, "2023-02-28 12:00:00", "2023-03-01 12:00:00"},
        {Calculations::prevDay, "2025-01-01 12:00:00", "2024-12-31 12:00:00"},
        {Calculations::nextWeek, "2024-12-28 12:00:00", "2025-01-04 12:00:00"},
        {Calculations::prevWeek, "2024-03-06 12:00:00", "2024-02-28 12:00:00"},
        {Calculations::nextMonth, "2023-01-31 12:00:00", "2023-02-28 12:00:00"},
        {Calculations::prevMonth, "2024-03-31 12:00:00", "2024-02-29 12:00:00"},
        {Calculations::prevMonth, "2024-01-31 12:00:00", "2023-12-31 12:00:00"},
        {Calculations::firstHourIn, "2024-03-05 14:37:12", "2024-03-05 00:37:12"},
        {Calculations::lastHourIn, "2024-03-05 14:37:12", "2024-03-05 23:37:12"},
        {Calculations::dateBegin, "2024-03-05 14:37:12", "2024-03-05 00:00:00"},
        {Calculations::dateEnd, "2024-03-05 14:37:12", "2024-03-05 23:59:59"},
        {Calculations::firstDayInWeek, "2025-01-01 14:00:00", "2024-12-29 00:00:00"},
        {Calculations::lastDayInWeek, "2025-01-01 14:00:00", "2025-01-04 00:00:00"},
        {Calculations::firstDayInWeek, "2024-09-01 00:00:00", "2024-09-01 00:00:00"},
        {Calculations::firstDayInMonth, "2024-02-17 14:00:00", "2024-02-01 00:00:00"},
        {Calculations::lastDayInMonth, "2024-02-17 14:00:00", "2024-02-29 00:00:00"},
        {Calculations::lastDayInMonth, "1900-02-01 00:00:00", "1900-02-28 00:00:00"},
        {Calculations::prevDay, "1582-10-15 12:00:00", "1582-10-14 12:00:00"},
        {Calculations::lastDayInMonth, "0001-02-05 00:00:00", "0001-02-28 00:00:00"},
        {Calculations::nextDay, "9999-12-31 23:59:59", "10000-01-01 23:59:59"},
    };
    const Place place;
    for (const auto& [step, from, want] : rows) EXPECT_EQ(text(step(at(from))), want) << from;
}

TEST(CalendricalCalculations, IsRightWhereClocksChange) {
    const Step nextYearOfWeeks = [](const Date& date) {
        return Calculations::dateByAddingUnit(NSCalendarUnitYearForWeekOfYear, 1, date);
    };
    const std::tuple<const char*, Step, const char*, const char*> rows[] = {
        {"UTC", nextYearOfWeeks, "2022-12-31 10:00:00", "2023-12-30 10:00:00"},  // from a week 53 into 52
        {"Europe/Berlin", Calculations::nextHour, "2024-03-31 01:30:00", "2024-03-31 03:30:00"},
        {"Europe/Berlin", Calculations::nextHour, "2024-10-27 02:30:00", "2024-10-27 02:30:00"},
        {"Europe/Berlin", Calculations::nextDay, "2024-03-30 02:30:00", "2024-03-31 03:30:00"},
        {"Europe/Berlin", Calculations::dateEnd, "2024-03-31 12:00:00", "2024-03-31 23:59:59"},
        {"Australia/Lord_Howe", Calculations::nextHour, "2024-10-06 01:30:00", "2024-10-06 03:00:00"},
        {"Pacific/Apia", Calculations::nextDay, "2011-12-29 10:00:00", "2011-12-31 10:00:00"},
        {"Pacific/Apia", Calculations::prevDay, "2011-12-31 10:00:00", "2011-12-29 10:00:00"},
        {"America/Santiago", Calculations::dateBegin, "2024-09-08 12:00:00", "2024-09-08 01:00:00"},
        {"America/Santiago", Calculations::dateEnd, "2024-09-08 12:00:00", "2024-09-08 23:59:59"},
        {"America/Santiago", Calculations::firstDayInWeek, "2024-09-10 12:00:00", "2024-09-08 01:00:00"},
        {"America/Mexico_City", Calculations::nextHour, "2024-04-07 01:30:00", "2024-04-07 02:30:00"},
        {"Africa/Cairo", Calculations::nextHour, "2024-04-25 23:30:00", "2024-04-26 01:30:00"},
        {"Asia/Almaty", Calculations::nextHour, "2024-02-29 23:30:00", "2024-02-29 23:30:00"},
    };
    for (const auto& [zone, step, from, want] : rows) {
        const Place place(zone);
        EXPECT_EQ(text(step(at(from))), want) << zone << " " << from;
    }
}

TEST(CalendricalCalculations, MeasuresMonths) {
    const std::tuple<const char*, std::int64_t, std::int64_t, std::int64_t> rows[] = {
        {"2024-02-10 08:00:00", 29, 5, 4}, {"2023-02-10 08:00:00", 28, 5, 3},
        {"2015-02-10 08:00:00", 28, 4, 0}, {"2024-06-30 23:59:59", 30, 6, 6},
        {"2024-09-01 00:00:00", 30, 5, 0}, {"2024-12-31 12:00:00", 31, 5, 0},
    };
    const Place place;
    for (const auto& [date, days, weeks, column] : rows) {
        EXPECT_EQ(Calculations::totalDaysInMonth(at(date)), days) << date;
        EXPECT_EQ(Calculations::totalWeekInMonth(at(date)), weeks) << date;
        EXPECT_EQ(Calculations::firstDayOfWeekInThisMonth(at(date)), column) << date;
    }
}

TEST(CalendricalCalculations, ComparesDates) {
    const std::tuple<const char*, const char*, bool, bool, bool> rows[] = {
        {"2024-12-30 12:00:00", "2025-01-02 12:00:00", false, true, false},
        {"2025-01-04 23:59:59", "2025-01-05 00:00:00", false, false, true},
        {"2024-03-31 12:00:00", "2025-03-01 12:00:00", false, false, false},
        {"2024-03-05 00:00:00", "2024-03-05 23:59:59", true, true, true},
        {"2023-12-31 12:00:00", "2024-01-06 12:00:00", false, true, false},
        {"2022-12-31 12:00:00", "2023-01-01 12:00:00", false, false, false},
        {"2024-01-01 12:00:00", "2024-12-31 12:00:00", false, true, false},  // both in a week 1 of 2024
    };
    const Place place;
    for (const auto& [first, second, day, week, month] : rows) {
        for (const bool isSwapped : {false, true}) {
            const Date one = at(isSwapped ? second : first);
            const Date other = at(isSwapped ? first : second);
            EXPECT_EQ(Calculations::isDateInSameDayAsDate(one, other), day) << first;
            EXPECT_EQ(Calculations::isDateInSameWeekAsDate(one, other), week) << first;
            EXPECT_EQ(Calculations::isDateInSameMonthAsDate(one, other), month) << first;
        }
    }
}

TEST(CalendricalCalculations, CountsUnits) {
    const std::tuple<const char*, NSCalendarUnit, const char*, const char*, std::int64_t> rows[] = {
        {"UTC", NSCalendarUnitDay, "2024-03-05 23:59:00", "2024-03-06 00:01:00", 1},
        {"UTC", NSCalendarUnitMonth, "2024-01-31 00:00:00", "2024-02-01 00:00:00", 1},
        {"UTC", NSCalendarUnitYear, "2024-12-31 23:00:00", "2023-01-01 00:00:00", -1},
        {"UTC", NSCalendarUnitYear, "0001-06-01 00:00:00", "9999-01-01 00:00:00", 9998},
        {"UTC", NSCalendarUnitWeekOfYear, "2024-12-28 12:00:00", "2025-01-05 00:00:00", 2},
        {"UTC", NSCalendarUnitHour, "2024-03-05 23:59:00", "2024-03-06 00:01:00", 1},
        {"UTC", NSCalendarUnitMinute, "2024-03-05 23:59:59", "2024-03-05 23:58:01", -1},
        // From Sunday, 1 January 2023, to Sunday, 31 December 2023: 52 weeks, but not twelve months.
        {"UTC", NSCalendarUnitYearForWeekOfYear, "2023-06-01 00:00:00", "2024-06-01 00:00:00", 1},
        {"UTC", NSCalendarUnitYearForWeekOfYear, "2024-12-29 00:00:00", "2016-12-31 23:59:59", -9},
        {"UTC", 3, "2024-03-05 23:59:00", "2024-03-06 00:01:00", 0},
        {"UTC", 24, "2024-03-05 23:59:00", "2024-05-06 00:01:00", 0},
        // The 8th begins at 01:00.
        {"America/Santiago", NSCalendarUnitDay, "2024-09-08 12:00:00", "2024-09-09 12:00:00", 1},
        {"America/Santiago", NSCalendarUnitDay, "2024-09-09 12:00:00", "2024-09-08 12:00:00", -1},
        {"America/Santiago", NSCalendarUnitDay, "2024-09-01 12:00:00", "2024-09-08 12:00:00", 7},
        {"Europe/Berlin", NSCalendarUnitHour, "2024-10-27 01:10:00", "2024-10-27 04:05:00", 4},
        {"Europe/Berlin", NSCalendarUnitMonth, "2024-03-31 12:00:00", "2024-11-01 00:00:00", 8},
        {"Pacific/Apia", NSCalendarUnitDay, "2011-12-29 12:00:00", "2011-12-31 12:00:00", 2},
    };
    for (const auto& [zone, unit, from, to, want] : rows) {
        const Place place(zone);
        EXPECT_EQ(Calculations::numberOfUnit(unit, at(from), at(to)), want)
            << zone << " " << unit << " " << from;
    }
}

TEST(CalendricalCalculations, KnowsTheDaysAroundToday) {
    const auto clock = std::make_shared<testing::ManualClock>(*at("2024-03-01 00:30:00")->timePoint());
    const ScopedPort<Clock> scope(clock);
    const Place place;
    const std::tuple<const char*, bool, bool> rows[] = {
        {"2024-02-27 23:59:59", false, false}, {"2024-02-28 00:00:00", true, false},
        {"2024-02-28 23:59:59", true, false},  {"2024-02-29 00:00:00", false, false},
        {"2024-03-03 12:00:00", false, true},  {"2024-03-04 00:00:00", false, false},
    };
    for (const auto& [date, isBefore, isAfter] : rows) {
        EXPECT_EQ(Calculations::isDateInTheDayBeforeYesterday(at(date)), isBefore) << date;
        EXPECT_EQ(Calculations::isDateInTheDayAfterTomorrow(at(date)), isAfter) << date;
    }
}

TEST(CalendricalCalculations, WritesLabels) {
    const Place place;
    const auto fields = Calculations::componentsFromDate(at("2024-03-05 14:07:09"));
    const std::pair<NSCalendarUnit, const char*> rows[] = {
        {4 | 8 | 16 | 32 | 64, "2024年 03月 05日 14:07"}, {64, "07分"},           {32, "14时"}, {0, ""},
        {~NSCalendarUnit{0}, "2024年 03月 05日 14:07"},   {16 | 64, "05日 07分"}, {128, ""}};
    for (const auto& [units, want] : rows) EXPECT_EQ(Calculations::stringFromComponent(fields, units), want);
    EXPECT_EQ(Calculations::stringFromComponent(std::nullopt, 4 | 64), "0000年 00分");
    EXPECT_EQ(Calculations::stringFromComponent(NSDateComponents(), 32), "9223372036854775807时");
    EXPECT_EQ(Calculations::dateStringFromDate(at("2024-03-05 14:07:09")), "2024年 03月 05日");
    EXPECT_EQ(Calculations::dateStringFromDate(std::nullopt), std::nullopt);
}

TEST(CalendricalCalculations, AnswersHarmlesslyBeyondItsYears) {
    const Place place;
    const Date now = NSDate::date();
    const auto since1970 = NSDate::dateWithTimeIntervalSince1970;
    for (const Date date :
         {Date(), Date(since1970(NAN)), Date(since1970(HUGE_VAL)), Date(since1970(-1e300))}) {
        for (const auto step :
             {Calculations::nextHour, Calculations::prevMonth, Calculations::lastHourIn,
              Calculations::firstDayInWeek, Calculations::lastDayInMonth, Calculations::dateEnd}) {
            EXPECT_EQ(step(date), std::nullopt);
        }
        EXPECT_EQ(Calculations::totalDaysInMonth(date), 0);
        EXPECT_EQ(Calculations::totalWeekInMonth(date), 0);
        EXPECT_EQ(Calculations::firstDayOfWeekInThisMonth(date), 0);
        EXPECT_EQ(Calculations::numberOfUnit(NSCalendarUnitDay, date, now), 0);
        EXPECT_FALSE(Calculations::isDateInSameWeekAsDate(date, date));
        EXPECT_FALSE(Calculations::isDateInSameMonthAsDate(date, date));
        EXPECT_EQ(Calculations::componentsFromDate(date), NSDateComponents());
    }
    for (const std::int64_t value : {INT64_MAX, INT64_MAX - 1, INT64_MIN, std::int64_t{1} << 46}) {
        for (NSCalendarUnit unit = 1; unit != 0; unit <<= 1)
            EXPECT_EQ(Calculations::dateByAddingUnit(unit, value, now).has_value(),
                      unit == NSCalendarUnitNanosecond && value != INT64_MAX)
                << unit << " " << value;
    }
}

}  // namespace
}  // namespace kx
