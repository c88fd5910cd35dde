// SPDX-License-Identifier: MIT

#include <fstream>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSTimeZone.h>
#include <KXFoundation/Platform/Foundation/ZoneRules.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/CountedMemory.h>
#include <KXFoundation/Testing/ScopedPlatform.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

using namespace std::string_literals;

TEST(NSTimeZone, KnowsTheSystemsRules) {
    const std::tuple<const char*, double, std::int64_t> rows[] = {
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
    for (const auto& [name, utc, offset] : rows) {
        const auto zone = NSTimeZone::timeZoneWithName(name);
        ASSERT_TRUE(zone) << name;
        EXPECT_EQ(zone->secondsFromGMTForDate(NSDate::dateWithTimeIntervalSince1970(utc)), offset)
            << name << " " << utc;
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
    const std::tuple<const char*, std::int64_t, std::int64_t, std::int64_t, std::int64_t> rows[] = {
        {"Europe/Berlin", 1'711'850'400, 1'711'846'800, 1'711'843'200, 1'711'846'800},  // 2024-03-31 02:00
        {"Europe/Berlin", 1'711'854'000, 1'711'846'800, 1'711'846'800, 1'711'846'800},  // 03:00
        {"Europe/Berlin", 1'729'994'400, 1'729'987'200, 1'729'990'800, 1'729'990'800},  // 2024-10-27 02:00
        {"Europe/Berlin", 1'729'998'000, 1'729'994'400, 1'729'994'400, 1'729'994'400},  // 03:00
        {"Pacific/Apia", 1'325'203'200, 1'325'239'200, 1'325'152'800, 1'325'239'200},   // 2011-12-30
    };
    for (const auto& [zone, local, before, after, change] : rows) {
        const auto instants = NSTimeZone::timeZoneWithName(zone)->rules().instantsAt(local);
        EXPECT_EQ(instants.before, before) << zone << " " << local;
        EXPECT_EQ(instants.after, after) << zone << " " << local;
        EXPECT_EQ(instants.change, change) << zone << " " << local;
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

/// A zone file (RFC 8536) with changes at those seconds, between UTC and an hour later.
std::string zoneFile(const std::vector<std::int64_t>& changes) {
    const auto number = [](std::uint64_t value, int bytes) {
        std::string text;
        while (bytes-- > 0) text += static_cast<char>(value >> (8 * bytes));
        return text;
    };
    const auto block = [&](const std::vector<std::int64_t>& times) {
        std::string text = "TZif2" + std::string(15, '\0');
        for (const std::size_t count :
             {std::size_t{0}, std::size_t{0}, std::size_t{0}, times.size(), std::size_t{2}, std::size_t{8}})
            text += number(count, 4);
        for (const std::int64_t time : times) text += number(static_cast<std::uint64_t>(time), 8);
        for (std::size_t i = 0; i < times.size(); ++i) text += static_cast<char>(1 - i % 2);
        text += number(0, 4) + std::string(2, '\0') + number(3600, 4) + std::string("\0\4", 2);
        return text + std::string("UTC\0ONE\0", 8);
    };
    return block({}) + block(changes) + "\n\n";
}

TEST(NSTimeZone, AFileOfEndlessTimeCostsNoMore) {
    testing::ScopedPlatform platform;
    const testing::TemporaryDirectory folder;
    const std::string path = folder.path() + "/zone";
    std::ofstream(path, std::ios::binary) << zoneFile({-(std::int64_t{1} << 55), 0, std::int64_t{1} << 55});
    platform.environment().set("TZ", path);
    const ScopedPort<TimeZoneSettings> scope(TimeZoneSettings::makeDefault());
    const auto zone = NSTimeZone::systemTimeZone();
    EXPECT_EQ(zone->name(), path);
    EXPECT_EQ(zone->secondsFromGMTForDate(NSDate::dateWithTimeIntervalSince1970(-1)), 3600);
    EXPECT_EQ(zone->secondsFromGMTForDate(NSDate::dateWithTimeIntervalSince1970(1)), 0);
}

TEST(NSTimeZone, AFileThatPromisesMoreThanItHoldsCostsNoMemory) {
    const testing::TemporaryDirectory folder;
    const auto load = [&](const std::string& name, const std::string& contents) {
        std::ofstream(folder.path() + "/" + name, std::ios::binary) << contents;
        return ZoneRules::load(folder.path() + "/" + name);
    };
    std::string file = zoneFile({0});
    EXPECT_NE(load("whole", file), nullptr);
    EXPECT_EQ(load("cut", file.substr(0, file.size() - 12)), nullptr);
    constexpr std::size_t kTimesOfTheSecondBlock = 64 + 32;
    file[kTimesOfTheSecondBlock] = '\x20';
    testing::takePeakMemory();
    const std::size_t before = testing::heldMemory();
    EXPECT_EQ(load("hostile", file), nullptr);
    EXPECT_LT(testing::takePeakMemory(), before + (1U << 20));
}

TEST(NSTimeZone, ReadsTheUsersVariable) {
    testing::ScopedPlatform platform;
    const std::tuple<const char*, const char*, bool> rows[] = {
        {"Europe/Berlin", "Europe/Berlin", false},
        {":Asia/Tokyo", "Asia/Tokyo", false},
        {"/usr/share/zoneinfo/Asia/Tokyo", "/usr/share/zoneinfo/Asia/Tokyo", false},
        {"Nowhere/Town", "UTC", true},
        {"../../../etc/passwd", "UTC", true},
        {"/etc/passwd", "UTC", true},
    };
    for (const auto& [variable, name, isLogged] : rows) {
        platform.environment().set("TZ", variable);
        const ScopedPort<TimeZoneSettings> scope(TimeZoneSettings::makeDefault());
        const testing::CapturedLog log;
        EXPECT_EQ(NSTimeZone::systemTimeZone()->name(), name) << variable;
        EXPECT_TRUE(isLogged || log.lines().empty()) << variable;
    }
}

}  // namespace
}  // namespace kx
