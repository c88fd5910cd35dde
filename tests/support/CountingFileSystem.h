#pragma once

#include <atomic>
#include <memory>

#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kx::testing {

/// The real file system, counting what is asked of it by path. (Calls on an open file are not: none begins
/// without open.)
class CountingFileSystem final : public FileSystem {
  public:
    [[nodiscard]] std::size_t calls() const noexcept { return calls_; }

    Result<std::unique_ptr<File>> open(const std::string& path, Mode mode) override {
        return next().open(path, mode);
    }
    Result<Info> info(const std::string& path) override { return next().info(path); }
    Result<std::vector<std::string>> list(const std::string& directory) override {
        return next().list(directory);
    }
    Result<void> rename(const std::string& from, const std::string& to) override {
        return next().rename(from, to);
    }
    Result<void> remove(const std::string& path) override { return next().remove(path); }
    Result<void> makeDirectory(const std::string& path) override { return next().makeDirectory(path); }
    Result<void> syncDirectory(const std::string& path) override { return next().syncDirectory(path); }

  private:
    FileSystem& next() {
        ++calls_;
        return *real_;
    }

    std::shared_ptr<FileSystem> real_ = FileSystem::makeDefault();
    std::atomic<std::size_t> calls_{0};
};

}  // namespace kx::testing
