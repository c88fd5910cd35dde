#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSCalendar.h>
#include <KXFoundation/Platform/Foundation/NSTimeZone.h>
#include <KXFoundation/Platform/Foundation/ZoneRules.h>

#include "support/CapturedLog.h"
#include "support/InjectedTimeZone.h"
#include "support/ScopedPlatform.h"

namespace kx {
namespace {

using namespace std::string_literals;

TEST(NSTimeZone, KnowsTheSystemsRules) {
    const struct {
        const char* zone;
        double utc;
        std::int64_t offset;
    } rows[] = {
        {"UTC", 1e9, 0},
        {"America/New_York", -3'000'000'000, -17'762},   // local mean time
        {"America/New_York", 1'710'053'999, -5 * 3600},  // the second before a change
        {"America/New_York", 1'710'054'000, -4 * 3600},
        {"America/New_York", 13'574'000'000, -5 * 3600},  // February 2400
        {"America/New_York", 32'519'000'000, -4 * 3600},  // summer of the year 3000
        {"America/New_York", 253'390'000'000, -4 * 3600},
        {"America/Mexico_City", 1'720'000'000, -6 * 3600},
        {"Asia/Almaty", 1'709'229'599, 6 * 3600},
        {"Asia/Almaty", 1'709'229'600, 5 * 3600},
        {"Africa/Cairo", 1'720'000'000, 3 * 3600},
        {"Australia/Lord_Howe", 1'720'000'000, 10 * 3600 + 1800},
        {"Australia/Lord_Howe", 1'735'000'000, 11 * 3600},
        {"Asia/Kathmandu", 1e9, 20'700},
    };
    for (const auto& row : rows) {
        const auto zone = NSTimeZone::timeZoneWithName(row.zone);
        ASSERT_TRUE(zone) << row.zone;
        EXPECT_EQ(zone->secondsFromGMTForDate(NSDate::dateWithTimeIntervalSince1970(row.utc)), row.offset)
            << row.zone << " " << row.utc;
    }
}

/// Every hour of a century, there and back.
TEST(NSTimeZone, FindsTheWayBackFromLocalTime) {
    for (const char* name : {"America/New_York", "Europe/Berlin", "Australia/Lord_Howe", "Pacific/Apia",
                             "America/Santiago", "Africa/Casablanca", "Asia/Almaty", "Africa/Monrovia"}) {
        const ZoneRules& rules = NSTimeZone::timeZoneWithName(name)->rules();
        for (std::int64_t utc = -1'000'000'000; utc < 5'000'000'000; utc += 1'800) {
            const std::int64_t local = utc + rules.offsetAt(utc);
            const auto instants = rules.instantsAt(local);
            ASSERT_TRUE(instants.before == utc || instants.after == utc) << name << " " << utc;
            ASSERT_LE(instants.before, instants.after) << name << " " << utc << " is not skipped";
        }
    }
}

TEST(NSTimeZone, TellsSkippedTimesFromRepeatedOnes) {
    const struct {
        const char* zone;
        std::int64_t local, before, after, change;
    } rows[] = {
        {"Europe/Berlin", 1'711'850'400, 1'711'846'800, 1'711'843'200, 1'711'846'800},  // 2024-03-31 02:00
        {"Europe/Berlin", 1'711'854'000, 1'711'846'800, 1'711'846'800, 1'711'846'800},  // 03:00
        {"Europe/Berlin", 1'729'994'400, 1'729'987'200, 1'729'990'800, 1'729'990'800},  // 2024-10-27 02:00
        {"Europe/Berlin", 1'729'998'000, 1'729'994'400, 1'729'994'400, 1'729'994'400},  // 03:00
        {"Pacific/Apia", 1'325'203'200, 1'325'239'200, 1'325'152'800, 1'325'239'200},   // 2011-12-30
    };
    for (const auto& row : rows) {
        const auto instants = NSTimeZone::timeZoneWithName(row.zone)->rules().instantsAt(row.local);
        EXPECT_EQ(instants.before, row.before) << row.zone << " " << row.local;
        EXPECT_EQ(instants.after, row.after) << row.zone << " " << row.local;
        EXPECT_EQ(instants.change, row.change) << row.zone << " " << row.local;
    }
}

TEST(NSTimeZone, RefusesWhatIsNoName) {
    for (const std::string& name :
         {""s, "Nowhere/Town"s, "../../etc/passwd"s, "/etc/localtime"s, "Europe"s, "Europe//Berlin"s,
          "Europe/../Europe/Berlin"s, "Europe/Berlin\0x"s, "\xFF"s, std::string(100'000, 'x')}) {
        EXPECT_EQ(NSTimeZone::timeZoneWithName(name), nullptr) << name.substr(0, 40);
    }
    EXPECT_EQ(NSTimeZone::timeZoneWithName(std::nullopt), nullptr);
    EXPECT_EQ(NSTimeZone::timeZoneForSecondsFromGMT(INT64_MIN), nullptr);
    EXPECT_EQ(NSTimeZone::timeZoneForSecondsFromGMT(-9'000)->name(), "GMT-02:30");
}

TEST(NSTimeZone, ReadsTheUsersVariable) {
    testing::ScopedPlatform platform;
    const struct {
        const char *variable, *name;
        bool isLogged;
    } rows[] = {
        {"Europe/Berlin", "Europe/Berlin", false},
        {":Asia/Tokyo", "Asia/Tokyo", false},
        {"/usr/share/zoneinfo/Asia/Tokyo", "/usr/share/zoneinfo/Asia/Tokyo", false},
        {"Nowhere/Town", "UTC", true},
        {"../../../etc/passwd", "UTC", true},
        {"/etc/passwd", "UTC", true},
    };
    for (const auto& row : rows) {
        platform.environment().set("TZ", row.variable);
        const ScopedPort<TimeZoneSettings> scope(TimeZoneSettings::makeDefault());
        const testing::CapturedLog log;
        EXPECT_EQ(NSTimeZone::systemTimeZone()->name(), row.name) << row.variable;
        EXPECT_TRUE(row.isLogged || log.lines().empty()) << row.variable;
    }
}

}  // namespace
}  // namespace kx
