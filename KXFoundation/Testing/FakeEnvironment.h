// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Environment.h>

namespace kx::testing {

/// An environment that holds nothing but what the test puts there.
class KX_EXPORT FakeEnvironment final : public Environment {
  public:
    /// Sets a variable; an empty value takes it away.
    FakeEnvironment& set(const std::string& name, std::string_view value);
    FakeEnvironment& setProgramPath(std::string_view path);

    [[nodiscard]] std::optional<std::string> variable(const std::string& name) const override;
    [[nodiscard]] std::string programPath() const override;

  private:
    mutable std::mutex mutex_;
    std::map<std::string, std::string> variables_;            // guarded by mutex_
    std::string programPath_ = "/opt/test/bin/test-program";  // guarded by mutex_
};

}  // namespace kx::testing
