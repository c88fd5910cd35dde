// SPDX-License-Identifier: MIT

// Localized texts: 10,000 keys, looked up warm and in random order; opening such a table; and the whole road
// of an application that follows the system's language.
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/StringTable.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>

#include "benchmarks/Localization/ScannedStrings.h"
#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/IcuTexts.h"
#include "benchmarks/peers/Inputs.h"

namespace {

const std::string kFolder = KX_BENCHMARK_TEXTS;
const std::string kTable = kFolder + "/en.lproj/Localizable.strings";

const std::vector<std::string> keys = [] {
    std::vector<std::string> read;
    std::ifstream file(kFolder + "/keys.txt");
    for (std::string line; std::getline(file, line);) read.push_back(line);
    return read;
}();

const std::vector<std::uint32_t> order = peers::uniform(static_cast<std::uint32_t>(keys.size()), 1 << 16);

const kx::NSBundle& bundle() {
    static const auto made = kx::make<kx::NSBundle>(kFolder + "/en.lproj");
    return *made;
}

const peers::IcuTexts& icuTexts() {
    static const peers::IcuTexts made(kFolder + "/icu");
    return made;
}

/// The application's bundle in the system's language, which is English; settings of its own in the build
/// tree.
void followSystem() {
    setenv("XDG_CONFIG_HOME", (kFolder + "/config").c_str(), 1);
    setenv("LANGUAGE", "en", 1);
    kx::NSBundle::setMainBundlePath(kFolder);
    kx::KXLocalizationUtils::setSelectLanguage("auto");
}

[[maybe_unused]] const bool checked = [] {
    followSystem();
    const ScannedStrings scanned(kTable, keys.size());
    bool equal = keys.size() == 10000;
    for (const auto& key : keys) {
        const std::string text = icuTexts().utf8(key);
        equal = equal && !text.empty() && bundle().lookUp(key) == text && scanned.lookUp(key) == text &&
                kx::KXLocalizationUtils::localizedStringForKey(key) == text;
    }
    return peers::checkEqualAnswers(equal, "strings");
}();

/// Runs look(key) over the keys in random order, each thread from another place.
template <class Look>
void lookUpAtRandom(benchmark::State& state, Look look) {
    peers::Cycle next(order, static_cast<std::size_t>(state.thread_index()) * 12345);
    for (auto _ : state) benchmark::DoNotOptimize(look(keys[next()]));
}

void lookUp(benchmark::State& state) {
    lookUpAtRandom(state, [](const std::string& key) { return bundle().lookUp(key); });
}
BENCHMARK(lookUp)->Name("strings/lookup/kx");
BENCHMARK(lookUp)->Name("strings/lookup-two-threads/kx")->Threads(2)->UseRealTime();

void lookUpWithIcu(benchmark::State& state) {
    lookUpAtRandom(state, [](const std::string& key) { return icuTexts().lookUp(key); });
}
BENCHMARK(lookUpWithIcu)->Name("strings/lookup/icu");
BENCHMARK(lookUpWithIcu)->Name("strings/lookup-two-threads/icu")->Threads(2)->UseRealTime();
BENCHMARK(lookUpWithIcu)->Name("strings/localized-follow-system/icu");

void localized(benchmark::State& state) {
    lookUpAtRandom(
        state, [](const std::string& key) { return kx::KXLocalizationUtils::localizedStringForKey(key); });
}
BENCHMARK(localized)->Name("strings/localized-follow-system/kx");

void load(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            kx::StringTable::load(kx::FileSystem::slot().current(), kTable).value()->size());
    }
}
BENCHMARK(load)->Name("strings/load-10000/kx")->Unit(benchmark::kMicrosecond);

void loadByScanning(benchmark::State& state) {
    for (auto _ : state) {
        const ScannedStrings scanned(kTable, keys.size());
        benchmark::DoNotOptimize(&scanned);
    }
}
BENCHMARK(loadByScanning)->Name("strings/load-10000/scan")->Unit(benchmark::kMicrosecond);

}  // namespace
