// SPDX-License-Identifier: MIT

#include "TemporaryHome.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

#include <KXFoundation/Platform/Runtime/Executor.h>

namespace gallery {

using namespace kx;

namespace {

std::string newFolder() {
    std::string path = (std::filesystem::temp_directory_path() / "kx-gallery-XXXXXX").string();
    return mkdtemp(path.data()) ? path : "";
}

}  // namespace

class TemporaryHome::Variables final : public Environment {
  public:
    Variables(std::string home, Others others)
        : home_(std::move(home)), others_(others), actual_(Environment::makeDefault()) {}

    std::optional<std::string> variable(const std::string& name) const override {
        if (name == "HOME") return home_.empty() ? std::nullopt : std::optional(home_);
        const bool leadsElsewhere = name.starts_with("XDG_") && name.ends_with("_HOME");
        if (leadsElsewhere || others_ == Others::Unset) return std::nullopt;
        return actual_->variable(name);
    }
    std::string programPath() const override { return actual_->programPath(); }

  private:
    const std::string home_;
    const Others others_;
    const std::shared_ptr<Environment> actual_;
};

TemporaryHome::TemporaryHome(Others others)
    : path_(newFolder()), variables_(std::make_shared<Variables>(path_, others)) {}

TemporaryHome::~TemporaryHome() {
    drainQueues();
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
}

}  // namespace gallery
