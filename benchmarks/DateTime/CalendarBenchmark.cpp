// SPDX-License-Identifier: MIT

// What a page of a calendar asks for: first and last day of an instant's month, its rows of weeks, the column
// of its first day and its number of days, in a zone with daylight saving time, for instants of two years.
#include <algorithm>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>
#include <date/date.h>
#include <date/tz.h>

#include <KXFoundation/DateTime/NSCalendar_CalendricalCalculations.h>

#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/Inputs.h"

namespace {

constexpr const char* kZone = "America/New_York";

const std::vector<std::int64_t> instants = [] {
    std::vector<std::int64_t> made;
    for (const auto seconds : peers::uniform(2 * 365 * 86'400, 1 << 12))
        made.push_back(1'700'000'000 + seconds);
    return made;
}();

struct Page {
    std::int64_t firstDay, lastDay;  // in seconds from 1970
    std::int64_t weeks, column, days;

    bool operator==(const Page&) const = default;
};

[[maybe_unused]] const bool settled = [] {
    kx::NSCalendar_CalendricalCalculations::calculationCalendar()->setTimeZone(
        kx::NSTimeZone::timeZoneWithName(kZone));
    return true;
}();

Page pageOfKx(std::int64_t instant) {
    using Calculations = kx::NSCalendar_CalendricalCalculations;
    const auto date = kx::NSDate::dateWithTimeIntervalSince1970(static_cast<double>(instant));
    return {static_cast<std::int64_t>(Calculations::firstDayInMonth(date)->timeIntervalSince1970()),
            static_cast<std::int64_t>(Calculations::lastDayInMonth(date)->timeIntervalSince1970()),
            Calculations::totalWeekInMonth(date), Calculations::firstDayOfWeekInThisMonth(date),
            Calculations::totalDaysInMonth(date)};
}

const date::time_zone* const zone = date::locate_zone(kZone);

/// Converts to local time once and gets everything from that.
Page pageOfDate(std::int64_t instant) {
    const auto day =
        date::floor<date::days>(zone->to_local(date::sys_seconds(std::chrono::seconds(instant))));
    const date::year_month_day civil(day);
    const auto month = civil.year() / civil.month();
    const auto first = date::local_days(month / 1);
    const auto last = date::local_days(month / date::last);
    const auto utc = [](date::local_days midnight) {
        return zone->to_sys(date::local_seconds(midnight), date::choose::earliest).time_since_epoch().count();
    };
    const unsigned column = date::weekday(first).c_encoding();
    const unsigned days = static_cast<unsigned>((month / date::last).day());
    return {utc(first), utc(last), (column + days + 6) / 7, column, days};
}

[[maybe_unused]] const bool checked = [] {
    const bool equal = std::all_of(instants.begin(), instants.end(),
                                   [](std::int64_t t) { return pageOfKx(t) == pageOfDate(t); });
    return peers::checkEqualAnswers(equal, "calendar/month-page");
}();

template <Page (*page)(std::int64_t)>
void makePages(benchmark::State& state) {
    peers::Cycle next(instants);
    for (auto _ : state) benchmark::DoNotOptimize(page(next()));
}
BENCHMARK(makePages<pageOfKx>)->Name("calendar/month-page/kx");
BENCHMARK(makePages<pageOfDate>)->Name("calendar/month-page/date");

}  // namespace
