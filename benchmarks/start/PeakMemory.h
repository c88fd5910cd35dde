// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>

/// Tells the program's peak of resident memory, in KiB, as its output. The parent's account of its child
/// would begin with the parent's own pages.
inline void printPeakMemory() {
    std::FILE* status = std::fopen("/proc/self/status", "r");
    char line[256];
    while (status && std::fgets(line, sizeof line, status)) {
        long kibibytes = 0;
        if (std::sscanf(line, "VmHWM: %ld", &kibibytes) == 1) std::printf("%ld\n", kibibytes);
    }
    if (status) std::fclose(status);
}
