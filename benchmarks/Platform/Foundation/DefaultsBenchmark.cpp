// SPDX-License-Identifier: MIT

// User defaults of 50 keys: one text read as a view, warm, against one look-up in a hash map.
#include <string>
#include <vector>

#include <absl/container/flat_hash_map.h>
#include <benchmark/benchmark.h>

#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>

#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/Inputs.h"

namespace {

constexpr std::size_t kKeys = 50;

const std::vector<std::string> keys = [] {
    std::vector<std::string> made;
    for (std::size_t i = 0; i < 64; ++i) made.push_back("setting-" + std::to_string(i % kKeys));
    return made;
}();

std::string valueOf(const std::string& key) {
    return "a value of ordinary length for " + key;
}

const absl::flat_hash_map<std::string, std::string> map = [] {
    absl::flat_hash_map<std::string, std::string> made;
    for (const auto& key : keys) made[key] = valueOf(key);
    return made;
}();

const std::shared_ptr<kx::NSUserDefaults> defaults = [] {
    auto made = kx::make<kx::NSUserDefaults>("");  // in memory
    for (const auto& key : keys) made->setObject(key, valueOf(key));
    return made;
}();

[[maybe_unused]] const bool checked = [] {
    bool equal = true;
    for (const auto& key : keys) equal = equal && defaults->stringViewForKey(key) == map.find(key)->second;
    return peers::checkEqualAnswers(equal, "defaults/read");
}();

void read(benchmark::State& state) {
    peers::Cycle next(keys);
    for (auto _ : state) benchmark::DoNotOptimize(defaults->stringViewForKey(next()));
}
BENCHMARK(read)->Name("defaults/read/kx");

void readMap(benchmark::State& state) {
    peers::Cycle next(keys);
    for (auto _ : state) benchmark::DoNotOptimize(std::string_view(map.find(next())->second));
}
BENCHMARK(readMap)->Name("defaults/read/hash");

}  // namespace
