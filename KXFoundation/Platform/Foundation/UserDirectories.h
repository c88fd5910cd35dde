// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

enum class UserDirectory : std::uint8_t { Documents, Pictures };

/// The user's own folder of that kind, an absolute path that need not exist yet: what `user-dirs.dirs` in the
/// configuration folder says (the format of xdg-user-dirs), else "Documents" or "Pictures" below the home
/// directory, as for a folder that is switched off by pointing it to the home directory itself. Absent
/// without a home. Reads the file at each call. Any thread.
[[nodiscard]] KX_EXPORT std::optional<std::string> userDirectory(UserDirectory which);

}  // namespace kx
