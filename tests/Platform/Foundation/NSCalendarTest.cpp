// SPDX-License-Identifier: MIT

#include <chrono>
#include <cmath>

#include <gtest/gtest.h>
#include <unicode/gregocal.h>

#include <KXFoundation/Platform/Foundation/NSCalendar.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

constexpr NSCalendarUnit kEverything = 4 | 8 | 16 | 32 | 64 | 128 | 512 | 4096 | 8192 | 16384;

/// ICU's fields of a wall time given as if it were UTC.
class Icu {
  public:
    explicit Icu(std::int64_t firstWeekday) : calendar_(icu::Locale::getRoot(), status_) {
        calendar_.adoptTimeZone(icu::TimeZone::getGMT()->clone());
        calendar_.setGregorianChange(-1.8e17, status_);
        calendar_.setFirstDayOfWeek(static_cast<UCalendarDaysOfWeek>(firstWeekday));
        calendar_.setMinimalDaysInFirstWeek(1);
    }
    NSDateComponents fields(std::int64_t wall) {
        calendar_.setTime(static_cast<double>(wall) * 1000, status_);
        NSDateComponents fields;
        fields.setYear(get(UCAL_EXTENDED_YEAR));
        fields.setMonth(get(UCAL_MONTH) + 1);
        fields.setDay(get(UCAL_DATE));
        fields.setHour(get(UCAL_HOUR_OF_DAY));
        fields.setMinute(get(UCAL_MINUTE));
        fields.setSecond(get(UCAL_SECOND));
        fields.setWeekday(get(UCAL_DAY_OF_WEEK));
        fields.setWeekOfMonth(get(UCAL_WEEK_OF_MONTH));
        fields.setWeekOfYear(get(UCAL_WEEK_OF_YEAR));
        fields.setYearForWeekOfYear(get(UCAL_YEAR_WOY));
        return fields;
    }
    std::uint64_t weeksInMonth() {
        return static_cast<std::uint64_t>(calendar_.getActualMaximum(UCAL_WEEK_OF_MONTH, status_));
    }

  private:
    std::int64_t get(UCalendarDateFields field) { return calendar_.get(field, status_); }

    UErrorCode status_ = U_ZERO_ERROR;
    icu::GregorianCalendar calendar_;
};

std::uint64_t daysIn(std::int64_t year, std::int64_t month) {
    const std::chrono::year_month_day_last last(std::chrono::year(static_cast<int>(year)) /
                                                static_cast<int>(month) / std::chrono::last);
    return static_cast<unsigned>(last.day());
}

TEST(NSCalendar, HasTheFieldsThatIcuHas) {
    const testing::ScopedPlatform platform;
    for (const std::int64_t firstWeekday : {1, 2, 7}) {
        const auto calendar = make<NSCalendar>();
        calendar->setTimeZone(NSTimeZone::timeZoneWithName("America/Santiago"));
        calendar->setFirstWeekday(firstWeekday);
        Icu icu(firstWeekday);
        // Five days and a bit at a time around today, eighty through the years 1 to 9999.
        for (std::int64_t utc = -62'135'500'000;
             utc<253'402'200'000; utc += utc> 0 && utc < 4'000'000'000 ? 437'653 : 6'937'653) {
            const auto date = NSDate::dateWithTimeIntervalSince1970(static_cast<double>(utc));
            const auto fields = calendar->components(kEverything, date);
            ASSERT_EQ(fields, icu.fields(utc + calendar->timeZone()->secondsFromGMTForDate(date))) << utc;
            ASSERT_EQ(calendar->components(kEverything, calendar->dateFromComponents(fields)), fields) << utc;
            ASSERT_EQ(calendar->rangeOfUnit(NSCalendarUnitWeekOfMonth, NSCalendarUnitMonth, date).length,
                      icu.weeksInMonth())
                << utc;
        }
    }
}

TEST(NSCalendar, TakesItsFirstWeekdayFromTheLocale) {
    testing::ScopedPlatform platform;
    const std::pair<const char*, std::int64_t> rows[] = {
        {"en_US", 1}, {"de_DE", 2}, {"ar_EG", 7}, {"pt_BR", 1}, {"en_GB", 2}, {"fa_IR", 7}, {"eo", 2}};
    const auto calendar = make<NSCalendar>();
    for (const auto& [locale, first] : rows) {
        calendar->setLocale(NSLocale::localeWithLocaleIdentifier(locale));
        EXPECT_EQ(calendar->firstWeekday(), first) << locale;
        platform.locale().setLocale(locale);
        EXPECT_EQ(make<NSCalendar>()->firstWeekday(), first) << locale;
    }
    for (const std::int64_t none : {0, 8, -1}) calendar->setFirstWeekday(none);
    EXPECT_EQ(calendar->firstWeekday(), 2);
    EXPECT_EQ(NSCalendar::initWithCalendarIdentifier("buddhist"), nullptr);
    EXPECT_EQ(NSCalendar::initWithCalendarIdentifier(std::nullopt), nullptr);
}

TEST(NSCalendar, KnowsWhereUnitsBegin) {
    const testing::ScopedPlatform platform;
    const std::tuple<const char*, NSCalendarUnit, double, double, double> rows[] = {
        {"UTC", NSCalendarUnitYear, 1'709'210'096, 1'704'067'200, 366 * 86'400},
        {"UTC", NSCalendarUnitMonth, 1'709'210'096, 1'706'745'600, 29 * 86'400},
        // 2024-12-30.
        {"UTC", NSCalendarUnitYearForWeekOfYear, 1'735'560'000, 1'735'430'400, 52 * 7 * 86'400},
        {"Europe/Berlin", NSCalendarUnitDay, 1'711'880'000, 1'711'839'600, 23 * 3600},
        {"Europe/Berlin", NSCalendarUnitHour, 1'729'991'100, 1'729'990'800, 3600},  // 02:05, the second time
        {"America/Santiago", NSCalendarUnitDay, 1'725'800'000, 1'725'768'000, 23 * 3600},     // from 01:00 on
        {"America/Toronto", NSCalendarUnitDay, -1'601'740'800, -1'601'753'400, 23.5 * 3600},  // from 00:30 on
        {"Australia/Lord_Howe", NSCalendarUnitHour, 1'728'143'400, 1'728'142'200,
         3600},  // 02:50, begun at 02:30
    };
    for (const auto& [zone, unit, at, wantStart, wantLength] : rows) {
        const auto calendar = make<NSCalendar>();
        calendar->setTimeZone(NSTimeZone::timeZoneWithName(zone));
        NSDate start = NSDate::dateWithTimeIntervalSince1970(0);
        double length = 0;
        EXPECT_TRUE(calendar->rangeOfUnit(unit, &start, &length, NSDate::dateWithTimeIntervalSince1970(at)));
        EXPECT_EQ(start.timeIntervalSince1970(), wantStart) << zone << " " << unit;
        EXPECT_EQ(length, wantLength) << zone << " " << unit;
    }
    EXPECT_FALSE(make<NSCalendar>()->rangeOfUnit(3, nullptr, nullptr, NSDate::date()));
}

TEST(NSCalendar, CountsSeveralUnitsFromTheLargestOn) {
    const testing::ScopedPlatform platform;
    const auto calendar = make<NSCalendar>();
    calendar->setTimeZone(NSTimeZone::timeZoneWithName("Europe/Berlin"));
    const auto from = NSDate::dateWithTimeIntervalSince1970(1'706'694'300);  // 2024-01-31 10:45
    const auto to = NSDate::dateWithTimeIntervalSince1970(1'743'933'600);    // 2025-04-06 12:00
    auto difference = calendar->components(4 | 8 | 16 | 32 | 64, from, to);
    NSDateComponents want;
    for (const auto& [unit, value] : {std::pair{4, 1}, {8, 2}, {16, 6}, {32, 1}, {64, 15}})
        want.setValueForComponent(value, static_cast<NSCalendarUnit>(unit));
    EXPECT_EQ(difference, want);
    EXPECT_EQ(calendar->dateByAddingComponents(difference, from), to);
    EXPECT_EQ(calendar->components(16, from, std::nullopt), NSDateComponents());
}

/// What is remembered of a month says what fields say, where clocks change at its ends too.
TEST(NSCalendar, MonthsAreWhatTheirFieldsSay) {
    const testing::ScopedPlatform platform;
    for (const char* zone : {"UTC", "America/New_York", "America/Santiago", "America/Havana",
                             "America/Sao_Paulo", "Africa/Cairo", "Africa/Casablanca", "Asia/Amman",
                             "Asia/Manila", "Australia/Lord_Howe", "Europe/Chisinau", "Pacific/Apia"}) {
        const auto calendar = make<NSCalendar>();
        calendar->setTimeZone(NSTimeZone::timeZoneWithName(zone));
        // Four days and a bit at a time, and both ends of each month that comes.
        for (std::int64_t utc = -4'000'000'000; utc < 14'000'000'000; utc += 359'999) {
            auto fields = calendar->components(
                kEverything, NSDate::dateWithTimeIntervalSince1970(static_cast<double>(utc)));
            const auto length = static_cast<std::int64_t>(daysIn(fields.year(), fields.month()));
            const auto at = [&](std::int64_t day) {
                fields.setDay(day);
                fields.setHour(0);
                fields.setMinute(0);
                fields.setSecond(0);
                return calendar->dateFromComponents(fields);
            };
            const auto first = at(1), last = at(length);
            for (const double seconds : {static_cast<double>(utc), first->timeIntervalSince1970(),
                                         at(length + 1)->timeIntervalSince1970() - 0.25}) {
                const auto date = NSDate::dateWithTimeIntervalSince1970(seconds);
                if (calendar->components(NSCalendarUnitMonth, date).month() != fields.month()) continue;
                ASSERT_EQ(calendar->firstDayOfMonth(date), first) << zone << " " << seconds;
                ASSERT_EQ(calendar->lastDayOfMonth(date), last) << zone << " " << seconds;
                ASSERT_EQ(calendar->rangeOfUnit(NSCalendarUnitDay, NSCalendarUnitMonth, date).length,
                          static_cast<std::uint64_t>(length))
                    << zone << " " << seconds;
            }
        }
    }
}

TEST(NSCalendar, CountsFractionsOfSeconds) {
    const testing::ScopedPlatform platform;
    const auto calendar = make<NSCalendar>();
    calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
    const std::tuple<double, double, std::int64_t, std::int64_t> rows[] = {
        {0.875, 1.125, 0, 0},      {1.125, 0.875, 0, 0},
        {0.125, 1.125, 0, 1},      {0.875, 86'400.125, 0, 86'399},
        {0.125, 86'400.875, 1, 0}, {86'400.125, 0.875, 0, -86'399},
        {-0.5, 0.25, 0, 0},        {0.75, -86'399.5, -1, 0}};
    for (const auto& [from, to, days, seconds] : rows) {
        const auto difference = calendar->components(NSCalendarUnitDay | NSCalendarUnitSecond,
                                                     NSDate::dateWithTimeIntervalSince1970(from),
                                                     NSDate::dateWithTimeIntervalSince1970(to));
        EXPECT_EQ(difference.day(), days) << from << " " << to;
        EXPECT_EQ(difference.second(), seconds) << from << " " << to;
    }
    NSDateComponents fields;
    fields.setYear(1970);
    for (const auto& [nanosecond, want] : {std::pair<std::int64_t, double>{500'000'000, 0.5},
                                           {-500'000'000, -0.5},
                                           {172'800'250'000'000, 172'800.25}}) {
        fields.setNanosecond(nanosecond);
        const auto date = calendar->dateFromComponents(fields);
        EXPECT_EQ(date, NSDate::dateWithTimeIntervalSince1970(want)) << nanosecond;
        EXPECT_EQ(calendar->components(NSCalendarUnitNanosecond, date).nanosecond(),
                  static_cast<std::int64_t>((want - std::floor(want)) * 1e9));
    }
}

}  // namespace
}  // namespace kx
