// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/DateTime/NSCalendar_Standard.h>
#include <KXFoundation/DateTime/NSDateComponents_Standard.h>
#include <KXFoundation/DateTime/NSDateFormatter_Standard.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

NSDateComponents fields(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour = 0,
                        std::int64_t minute = 0, std::int64_t second = 0) {
    NSDateComponents made;
    made.setYear(year);
    made.setMonth(month);
    made.setDay(day);
    made.setHour(hour);
    made.setMinute(minute);
    made.setSecond(second);
    return made;
}

TEST(StandardDates, TheFormatterKnowsNoUserSettings) {
    testing::ScopedPlatform platform;
    platform.locale().setLocale("fa_IR");
    platform.setTimeZone("Asia/Tehran");
    const auto formatter = NSDateFormatter_Standard::standardFormatter();
    const std::pair<double, const char*> rows[] = {
        {-62'135'596'800, "0001-01-01 00:00:00"}, {0, "1970-01-01 00:00:00"},
        {253'402'300'799, "9999-12-31 23:59:59"}, {1'709'210'096, "2024-02-29 12:34:56"},
        {-12'219'292'800, "1582-10-15 00:00:00"}, {-1, "1969-12-31 23:59:59"}};
    for (const auto& [seconds, text] : rows) {
        const auto date = NSDate::dateWithTimeIntervalSince1970(seconds);
        EXPECT_EQ(formatter->stringFromDate(date), text);
        EXPECT_EQ(formatter->dateFromString(text), date) << text;
    }
    for (const char* text :
         {"", "2024-02-30 00:00:00", "2024-13-01 00:00:00", "2024-01-01 24:00:00", "2024-01-01",
          "2024-01-01 00:00:00 ", " 2024-01-01 00:00:00", "2024-01-01T00:00:00", "٢٠٢٤-01-01 00:00:00",
          "99999999999-01-01 00:00:00", "-001-01-01 00:00:00"}) {
        EXPECT_EQ(formatter->dateFromString(text), std::nullopt) << text;
    }
    EXPECT_EQ(formatter->dateFromString(std::nullopt), std::nullopt);
}

TEST(StandardDates, AddsSecondsToComponents) {
    const testing::ScopedPlatform platform;
    const std::tuple<std::optional<NSDateComponents>, std::int64_t, NSDateComponents> rows[] = {
        {fields(2024, 2, 28, 23, 59, 30), 45, fields(2024, 2, 29, 0, 0, 15)},
        {fields(2024, 3, 1, 6, 7, 8), -86'400, fields(2024, 2, 29, 6, 7, 8)},
        {fields(2024, 14, 0, 25, -1, 0), 0, fields(2025, 2, 1, 0, 59, 0)},
        {std::nullopt, 5, fields(1970, 1, 1, 0, 0, 5)},
        {NSDateComponents(), 5, fields(1970, 1, 1, 0, 0, 5)},
        {fields(INT64_MAX - 1, 1, 1), 5, fields(1970, 1, 1, 0, 0, 5)},
        {fields(2024, 1, INT64_MIN), 5, fields(1970, 1, 1, 0, 0, 5)},
        {fields(2024, 1, 1), INT64_MAX, NSDateComponents()},
    };
    const auto calendar = NSCalendar_Standard::standardCalendar();
    for (const auto& row : rows) {
        const auto& [from, seconds, want] = row;
        EXPECT_EQ(NSCalendar_Standard::dateComponentsByAddSeconds(calendar, from, seconds), want)
            << &row - rows;
    }
    EXPECT_EQ(NSCalendar_Standard::dateComponentsByAddSeconds(nullptr, fields(2024, 1, 1), 1),
              NSDateComponents());
}

TEST(StandardDates, UpdatesSixFields) {
    NSDateComponents receiver = fields(1, 2, 3);
    receiver.setWeekday(4);
    receiver.setNanosecond(5);
    NSDateComponents other = fields(2024, 3, 5, 6, 7, 8);
    other.setWeekday(1);
    other.setMonth(NSDateComponentUndefined);
    NSDateComponents_Standard::updateWithDateComponents(&receiver, other);
    other.setWeekday(4);
    other.setNanosecond(5);
    EXPECT_EQ(receiver, other);
    NSDateComponents_Standard::updateWithDateComponents(&receiver, std::nullopt);
    EXPECT_EQ(receiver.year(), 0);
    NSDateComponents_Standard::updateWithDateComponents(nullptr, other);
}

TEST(StandardDates, CountsSecondsInADay) {
    const std::pair<std::optional<NSDateComponents>, double> rows[] = {
        {fields(2024, 1, 1), 0}, {fields(2024, 1, 1, 23, 59, 59), 86'399},
        {NSDateComponents(), 0}, {fields(1, 1, 1, 25, -1, 90), 90'030},
        {std::nullopt, 0},       {fields(1, 1, 1, INT64_MIN, 0, 1), 1}};
    for (const auto& row : rows)
        EXPECT_EQ(NSDateComponents_Standard::timeIntervalInDay(row.first), row.second)
            << "row " << &row - rows;
}

}  // namespace
}  // namespace kx
