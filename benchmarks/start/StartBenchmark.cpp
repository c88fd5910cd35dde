// SPDX-License-Identifier: MIT

// From the start of a program to its end, the parent's clock: loading what it links is most of it.
#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/Programs.h"

namespace {

std::string program(const char* name) {
    return std::string(KX_START_PROGRAMS "/start-") + name;
}

bool says(const char* name, const char* answer) {
    return peers::answerOf({program(name)}) == answer;
}

[[maybe_unused]] const bool checked =
    peers::checkEqualAnswers(says("foundation-kx", "harbour\n") && says("foundation-qtcore", "harbour\n"),
                             "start/foundation") &&
    peers::checkEqualAnswers(says("ui-kx", "48\n") && says("ui-qtwidgets", "48\n"), "start/ui");

void contend(const char* workload, const char* name) {
    benchmark::RegisterBenchmark(workload, peers::timeRuns, std::vector{program(name)})
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const bool registered = [] {
    contend("start/foundation/kx", "foundation-kx");
    contend("start/foundation/qtcore", "foundation-qtcore");
    contend("start/ui/kx", "ui-kx");
    contend("start/ui/qtwidgets", "ui-qtwidgets");
    return true;
}();

}  // namespace
