#include "support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace kx::testing {

namespace {

class HomeOnly final : public Environment {
  public:
    explicit HomeOnly(std::string home) : home_(std::move(home)) {}
    std::optional<std::string> variable(const std::string& name) const override {
        if (name != "HOME" || home_.empty()) return std::nullopt;
        return home_;
    }
    std::string programPath() const override { return "/opt/example/bin/example"; }

  private:
    std::string home_;
};

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "kx-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

ScopedHome::ScopedHome(std::string path) : scope_(std::make_shared<HomeOnly>(std::move(path))) {}

}  // namespace kx::testing
