// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

/// Contenders that are programs of their own, timed from start to end by the parent's clock.
namespace peers {

/// Runs the program with its arguments to its end, its output going to the descriptor; false unless it
/// succeeds.
inline bool run(std::vector<std::string> words, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = 0;
    const bool started = posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    int status = 1;
    return started && waitpid(child, &status, 0) == child && status == 0;
}

/// What the program says; a line, as the pipe has to hold it.
inline std::string answerOf(const std::vector<std::string>& words) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    const bool good = run(words, ends[1]);
    close(ends[1]);
    char text[64];
    const ssize_t length = read(ends[0], text, sizeof text);
    close(ends[0]);
    return good && length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

/// Times whole runs.
inline void timeRuns(benchmark::State& state, const std::vector<std::string>& words) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    for (auto _ : state) {
        if (!run(words, nowhere)) state.SkipWithError("the program fails");
    }
    close(nowhere);
}

}  // namespace peers
