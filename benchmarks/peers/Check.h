// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <cstdlib>

/// What every benchmark file here uses beside Google Benchmark.
namespace peers {

/// Contenders that do the same work must give the same answer; else nothing is timed.
inline bool checkEqualAnswers(bool equal, const char* workload) {
    if (equal) return true;
    std::fprintf(stderr, "%s: the contenders' answers differ\n", workload);
    std::abort();
}

}  // namespace peers
