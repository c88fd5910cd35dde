// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

typedef struct _FcConfig FcConfig;

namespace kx {

/// What a FontSource gives once it is read. Immutable.
struct LoadedFonts {
    FcConfig* configuration = nullptr;
    std::map<std::string, std::string> families;  ///< by squashedFamily(), the name as the font spells it
};

}  // namespace kx
