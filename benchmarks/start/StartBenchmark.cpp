// From the start of a program to its end, the parent's clock: loading what it links is most of it.
#include <string>
#include <string_view>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "benchmarks/peers/Check.h"

namespace {

std::string programPath(const char* name) {
    return std::string(KX_START_PROGRAMS "/start-") + name;
}

/// Runs the program to its end with its output going to the descriptor; false unless it succeeds.
bool run(const std::string& program, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    std::string path = program;
    char* const arguments[] = {path.data(), nullptr};
    pid_t child = 0;
    const bool started = posix_spawn(&child, path.c_str(), &actions, nullptr, arguments, environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    int status = 1;
    return started && waitpid(child, &status, 0) == child && status == 0;
}

std::string answerOf(const char* name) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    const bool good = run(programPath(name), ends[1]);
    close(ends[1]);
    char text[64];
    const ssize_t length = read(ends[0], text, sizeof text);
    close(ends[0]);
    return good && length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

[[maybe_unused]] const bool checked =
    peers::checkEqualAnswers(
        answerOf("foundation-kx") == "harbour\n" && answerOf("foundation-qtcore") == "harbour\n",
        "start/foundation") &&
    peers::checkEqualAnswers(answerOf("ui-kx") == "48\n" && answerOf("ui-qtwidgets") == "48\n", "start/ui");

void start(benchmark::State& state, const char* name) {
    const std::string program = programPath(name);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    for (auto _ : state) {
        if (!run(program, nowhere)) state.SkipWithError("the program fails");
    }
    close(nowhere);
}

void contend(const char* workload, const char* program) {
    benchmark::RegisterBenchmark(workload, start, program)->UseRealTime()->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const bool registered = [] {
    contend("start/foundation/kx", "foundation-kx");
    contend("start/foundation/qtcore", "foundation-qtcore");
    contend("start/ui/kx", "ui-kx");
    contend("start/ui/qtwidgets", "ui-qtwidgets");
    return true;
}();

}  // namespace
