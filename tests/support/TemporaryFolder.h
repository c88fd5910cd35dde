#pragma once

#include <memory>
#include <string>

#include <KXFoundation/Platform/Runtime/Environment.h>

namespace kx::testing {

/// An empty folder of this test's own, removed with all it holds at the end of the scope.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

  private:
    std::string path_;
};

/// Gives the process a home of its own for one scope and no other variable: XDG folders lie below it. An
/// empty path means that there is no home.
class ScopedHome {
  public:
    explicit ScopedHome(std::string path);

  private:
    ScopedPort<Environment> scope_;
};

}  // namespace kx::testing
