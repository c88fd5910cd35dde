// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx::testing {

/// A directory of its own below the system's temporary folder, removed with all in it at the end. The program
/// ends where none can be made.
class KX_EXPORT TemporaryDirectory {
  public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// Its real path: absolute, no symbolic link in it.
    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// The path of something in it: directory / "a/b".
    [[nodiscard]] std::string operator/(std::string_view name) const { return (path_ + '/').append(name); }

    /// Writes a file, making the directories above it; answers its path.
    std::string write(std::string_view name, std::string_view contents) const;
    /// Makes a directory and those above it; answers its path.
    std::string makeDirectory(std::string_view name) const;
    /// The contents of a file, empty if there is none.
    [[nodiscard]] std::string read(std::string_view name) const;

  private:
    std::string path_;
};

}  // namespace kx::testing
