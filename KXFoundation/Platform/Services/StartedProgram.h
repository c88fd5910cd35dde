// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// Starts a program with one argument and forgets it: it gets no file of ours, its end is collected without
/// anybody waiting, no shell reads the argument. An error if it cannot be started. Any thread.
KX_EXPORT Result<void> startProgram(const std::string& path, const std::string& argument);

/// The program of that name in the absolute folders of PATH; absent if there is none.
[[nodiscard]] KX_EXPORT std::optional<std::string> programInPath(const std::string& name);

}  // namespace kx
