// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Checks.h"
#include "KeyUses.h"

namespace kxstrings {

extern const char* const kUsage;

struct Options {
    std::string folder;
    std::vector<std::string> sources;
    Functions functions = libraryFunctions();
    IgnoredKeys ignored;
    bool help = false;
};

/// Absent for wrong use, which it has told of on the error output.
[[nodiscard]] std::optional<Options> readOptions(int argc, char** argv);

}  // namespace kxstrings
