// SPDX-License-Identifier: MIT

#include <KXFoundation/Testing/FakeEnvironment.h>

namespace kx::testing {

FakeEnvironment& FakeEnvironment::set(const std::string& name, std::string_view value) {
    const std::lock_guard lock(mutex_);
    variables_[name] = value;
    return *this;
}

FakeEnvironment& FakeEnvironment::setProgramPath(std::string_view path) {
    const std::lock_guard lock(mutex_);
    programPath_ = path;
    return *this;
}

std::optional<std::string> FakeEnvironment::variable(const std::string& name) const {
    const std::lock_guard lock(mutex_);
    const auto found = variables_.find(name);
    if (found == variables_.end() || found->second.empty()) return std::nullopt;
    return found->second;
}

std::string FakeEnvironment::programPath() const {
    const std::lock_guard lock(mutex_);
    return programPath_;
}

}  // namespace kx::testing
