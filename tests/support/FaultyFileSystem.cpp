#include "support/FaultyFileSystem.h"

#include <algorithm>
#include <array>
#include <limits>
#include <mutex>
#include <numeric>
#include <utility>

namespace kx::testing {

/// Decides over each call; shared with the open files, which may outlive the file system.
class FaultyFileSystem::Faults {
  public:
    /// Counts the call and says which error it meets, 0 for none.
    int meet(Call call) {
        const std::lock_guard lock(mutex);
        ++counts[static_cast<std::size_t>(call)];
        if (untilFailure == 0) return 0;
        if (untilFailure > 1) {
            --untilFailure;
            return 0;
        }
        if (then == Then::Recovers) untilFailure = 0;
        return systemError;
    }

    /// Takes room for a write and says for how many of its bytes there was some.
    std::size_t takeRoom(std::size_t size) {
        const std::lock_guard lock(mutex);
        const std::uint64_t taken = std::min<std::uint64_t>(size, room);
        if (room != kUnbounded) room -= taken;
        return static_cast<std::size_t>(taken);
    }

    static constexpr std::uint64_t kUnbounded = std::numeric_limits<std::uint64_t>::max();

    std::mutex mutex;  // guards all below
    std::array<std::size_t, 13> counts{};
    std::size_t untilFailure = 0;  // 1: the next call fails; 0: none does
    int systemError = 0;
    Then then = Then::Recovers;
    std::uint64_t room = kUnbounded;
};

class FaultyFileSystem::FaultyFile final : public File {
  public:
    FaultyFile(std::unique_ptr<File> below, std::shared_ptr<Faults> faults, std::string path)
        : below_(std::move(below)), faults_(std::move(faults)), path_(std::move(path)) {}

    Result<std::size_t> readAt(std::uint64_t offset, std::span<std::byte> into) override {
        if (const int error = faults_->meet(Call::Read)) return failure(error);
        return below_->readAt(offset, into);
    }

    Result<void> writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        if (const int error = faults_->meet(Call::Write))
            return tear(offset, bytes.first(bytes.size() / 2), error);
        const std::size_t room = faults_->takeRoom(bytes.size());
        if (room < bytes.size()) return tear(offset, bytes.first(room), ENOSPC);
        return below_->writeAt(offset, bytes);
    }

    Result<std::uint64_t> size() override {
        if (const int error = faults_->meet(Call::Size)) return failure(error);
        return below_->size();
    }

    Result<void> truncate(std::uint64_t size) override {
        if (const int error = faults_->meet(Call::Truncate)) return failure(error);
        return below_->truncate(size);
    }

    Result<void> sync() override {
        if (const int error = faults_->meet(Call::Sync)) return failure(error);
        return below_->sync();
    }

    Result<void> lock(Lock kind) override {
        if (const int error = faults_->meet(Call::Lock)) return failure(error);
        return below_->lock(kind);
    }

  private:
    Error failure(int error) const { return Error::fromErrno(error, path_); }

    Error tear(std::uint64_t offset, std::span<const std::byte> part, int error) {
        (void)below_->writeAt(offset, part);
        return failure(error);
    }

    std::unique_ptr<File> below_;
    std::shared_ptr<Faults> faults_;
    std::string path_;
};

FaultyFileSystem::FaultyFileSystem(std::shared_ptr<FileSystem> below)
    : below_(std::move(below)), faults_(std::make_shared<Faults>()) {}
FaultyFileSystem::~FaultyFileSystem() = default;

std::size_t FaultyFileSystem::calls() const {
    const std::lock_guard lock(faults_->mutex);
    return std::accumulate(faults_->counts.begin(), faults_->counts.end(), std::size_t{0});
}

std::size_t FaultyFileSystem::calls(Call call) const {
    const std::lock_guard lock(faults_->mutex);
    return faults_->counts[static_cast<std::size_t>(call)];
}

void FaultyFileSystem::resetCounts() {
    const std::lock_guard lock(faults_->mutex);
    faults_->counts.fill(0);
}

void FaultyFileSystem::failCall(std::size_t number, int systemError, Then then) {
    const std::lock_guard lock(faults_->mutex);
    faults_->untilFailure = number;
    faults_->systemError = systemError;
    faults_->then = then;
}

void FaultyFileSystem::setRoom(std::uint64_t bytes) {
    const std::lock_guard lock(faults_->mutex);
    faults_->room = bytes;
}

void FaultyFileSystem::heal() {
    const std::lock_guard lock(faults_->mutex);
    faults_->untilFailure = 0;
    faults_->room = Faults::kUnbounded;
}

Result<std::unique_ptr<File>> FaultyFileSystem::open(const std::string& path, Mode mode) {
    if (const int error = faults_->meet(Call::Open)) return Error::fromErrno(error, path);
    auto file = below_->open(path, mode);
    if (!file) return file;
    return std::unique_ptr<File>(std::make_unique<FaultyFile>(std::move(*file), faults_, path));
}

Result<FileSystem::Info> FaultyFileSystem::info(const std::string& path) {
    if (const int error = faults_->meet(Call::Info)) return Error::fromErrno(error, path);
    return below_->info(path);
}

Result<std::vector<std::string>> FaultyFileSystem::list(const std::string& directory) {
    if (const int error = faults_->meet(Call::List)) return Error::fromErrno(error, directory);
    return below_->list(directory);
}

Result<void> FaultyFileSystem::rename(const std::string& from, const std::string& to) {
    if (const int error = faults_->meet(Call::Rename)) return Error::fromErrno(error, to);
    return below_->rename(from, to);
}

Result<void> FaultyFileSystem::remove(const std::string& path) {
    if (const int error = faults_->meet(Call::Remove)) return Error::fromErrno(error, path);
    return below_->remove(path);
}

Result<void> FaultyFileSystem::makeDirectory(const std::string& path) {
    if (const int error = faults_->meet(Call::MakeDirectory)) return Error::fromErrno(error, path);
    return below_->makeDirectory(path);
}

Result<void> FaultyFileSystem::syncDirectory(const std::string& path) {
    if (const int error = faults_->meet(Call::SyncDirectory)) return Error::fromErrno(error, path);
    return below_->syncDirectory(path);
}

}  // namespace kx::testing
