// SPDX-License-Identifier: MIT

// A time of day as text: minutes after midnight, half of them with AM and PM, half without.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <time.h>

#include <KXFoundation/DateTime/KXDateUtils.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>

#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/Inputs.h"

namespace {

struct Time {
    std::int64_t minutes;
    bool hasAMPM;
};

/// The user is an American, wherever the benchmark runs.
class American final : public kx::LocaleSettings {
  public:
    std::vector<std::string> preferredLanguages() const override { return {"en-US"}; }
    std::string localeIdentifier() const override { return "en_US"; }
    std::uint64_t version() const noexcept override { return 1; }
};

const std::shared_ptr<kx::KXDateUtils> dates = [] {
    kx::LocaleSettings::slot().replace(std::make_shared<American>());
    return kx::KXDateUtils::sharedInstance();
}();

const std::vector<Time> times = [] {
    std::vector<Time> made;
    for (const auto number : peers::uniform(2 * 1440, 1 << 12)) made.push_back({number / 2, number % 2 == 1});
    return made;
}();

std::string written(const Time& time) {
    return *dates->convertMinutesToTimeString(time.minutes, time.hasAMPM, false);
}

/// The space before the marker, which the locale's data choose.
const std::string space = [] {
    const std::string text = written({0, true});
    return text.substr(5, text.size() - 7);
}();
const std::string withMarker = "%I:%M" + space + "%p";

std::string writtenByStrftime(const Time& time) {
    const time_t seconds = static_cast<time_t>(time.minutes * 60);
    tm parts;
    gmtime_r(&seconds, &parts);
    char text[32];
    return std::string(text,
                       strftime(text, sizeof text, time.hasAMPM ? withMarker.c_str() : "%H:%M", &parts));
}

[[maybe_unused]] const bool checked = [] {
    bool equal = true;
    for (const Time& time : times) equal = equal && written(time) == writtenByStrftime(time);
    return peers::checkEqualAnswers(equal, "time/minutes-with-flags");
}();

void kxWrites(benchmark::State& state) {
    peers::Cycle next(times);
    for (auto _ : state) {
        const Time& time = next();
        benchmark::DoNotOptimize(dates->convertMinutesToTimeString(time.minutes, time.hasAMPM, false));
    }
}
BENCHMARK(kxWrites)->Name("time/minutes-with-flags/kx");

void strftimeWrites(benchmark::State& state) {
    peers::Cycle next(times);
    for (auto _ : state) benchmark::DoNotOptimize(writtenByStrftime(next()));
}
BENCHMARK(strftimeWrites)->Name("time/minutes-with-flags/strftime");

}  // namespace
