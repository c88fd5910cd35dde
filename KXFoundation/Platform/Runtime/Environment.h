// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

/// The port of what the desktop tells a process at its start: variables and the program's own place.
/// Only Platform asks it. Any thread.
class KX_EXPORT Environment {
  public:
    virtual ~Environment() = default;

    /// The variable's value; an unset and an empty one are both absent.
    [[nodiscard]] virtual std::optional<std::string> variable(const std::string& name) const = 0;

    /// The absolute path of the running program.
    [[nodiscard]] virtual std::string programPath() const = 0;

    static PortSlot<Environment>& slot();
    static std::shared_ptr<Environment> makeDefault();
};

/// The XDG base directories (freedesktop.org, Base Directory Specification 0.8): the variable if it holds an
/// absolute path, else the default below the home directory; absent without a home.
enum class BaseDirectory : unsigned char { Config, Data, Cache, State };
[[nodiscard]] KX_EXPORT std::optional<std::string> baseDirectory(BaseDirectory which);

/// The last part of the program's path.
[[nodiscard]] KX_EXPORT std::string programName();

}  // namespace kx
