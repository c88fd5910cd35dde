// SPDX-License-Identifier: MIT

// One object found by its id among a thousand: linear, as a list whose ids need not differ has to be.
#include <algorithm>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <KXFoundation/Core/KXList.h>

#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/Inputs.h"

namespace {

constexpr std::uint32_t kObjects = 1000;

const std::shared_ptr<kx::KXList> list = [] {
    auto made = kx::KXList::list();
    for (std::uint32_t i = 0; i < kObjects; ++i) {
        made->addObject(kx::KXObject::objectWithID("device-" + std::to_string(100'000'000 + i * 7919)));
    }
    return made;
}();

const std::vector<std::string> ids = [] {
    std::vector<std::string> made;
    for (const auto i : peers::uniform(kObjects, 1 << 12)) made.push_back(*list->objectAtIndex(i)->id());
    return made;
}();

std::shared_ptr<kx::KXObject> findWithLoop(const std::string& id) {
    const auto& array = *list->listArray();
    const auto found =
        std::find_if(array.begin(), array.end(), [&](const auto& o) { return *o->id() == id; });
    return found == array.end() ? nullptr : *found;
}

[[maybe_unused]] const bool checked = [] {
    const bool equal = std::all_of(ids.begin(), ids.end(), [](const std::string& id) {
        return list->objectWithID(id) == findWithLoop(id) && findWithLoop(id);
    });
    return peers::checkEqualAnswers(equal && !list->objectWithID("device-"), "list/find-1000");
}();

void find(benchmark::State& state) {
    peers::Cycle next(ids);
    for (auto _ : state) benchmark::DoNotOptimize(list->objectWithID(next()));
}
BENCHMARK(find)->Name("list/find-1000/kx");

void loop(benchmark::State& state) {
    peers::Cycle next(ids);
    for (auto _ : state) benchmark::DoNotOptimize(findWithLoop(next()));
}
BENCHMARK(loop)->Name("list/find-1000/loop");

}  // namespace
