// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// What one service of the desktop is good for on this machine.
struct Capability {
    std::string_view name;  ///< "display", "portal", ...
    bool works;
    std::string detail;  ///< for a person: what it works with, or why it does not
};

/// Tries every service that the library stands on and tells of each, in a fixed order. Opens the modules,
/// asks the message buses and waits up to `patience` for each answer: not on the main thread. Changes
/// nothing.
[[nodiscard]] KX_EXPORT std::vector<Capability> capabilities(
    std::chrono::milliseconds patience = std::chrono::seconds(2));

}  // namespace kx
