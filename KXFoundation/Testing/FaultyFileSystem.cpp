#include <algorithm>
#include <array>
#include <limits>
#include <mutex>
#include <numeric>
#include <optional>
#include <span>
#include <utility>

#include <KXFoundation/Testing/FaultyFileSystem.h>

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

    void countRead(std::size_t size) {
        const std::lock_guard lock(mutex);
        bytesRead += size;
    }

    static constexpr std::uint64_t kUnbounded = std::numeric_limits<std::uint64_t>::max();

    std::mutex mutex;  // guards all below
    std::array<std::size_t, 14> counts{};
    std::uint64_t bytesRead = 0;
    std::size_t untilFailure = 0;  // 1: the next call fails; 0: none does
    int systemError = 0;
    Then then = Then::Recovers;
    std::uint64_t room = kUnbounded;
};

/// What undoes each change that is not synced yet, the latest last. Done over the file system below.
class FaultyFileSystem::Journal {
  public:
    explicit Journal(std::shared_ptr<FileSystem> files) : files_(std::move(files)) {}

    void begin() {
        const std::lock_guard lock(mutex_);
        remembers_ = true;
        undos_.clear();
        for (const std::string& path : mapped_) remember(path, path);
    }
    /// Before the contents of the file change, or are mapped to be changed.
    void changing(const std::string& path) {
        const std::lock_guard lock(mutex_);
        if (remembers_) remember(path, path);
    }
    void mapping(const std::string& path) {
        const std::lock_guard lock(mutex_);
        if (remembers_) remember(path, path);
        if (std::ranges::find(mapped_, path) == mapped_.end()) mapped_.push_back(path);
    }
    /// Before the name changes: made, removed or replaced.
    void naming(const std::string& path) {
        const std::lock_guard lock(mutex_);
        if (remembers_) remember(path, directoryOf(path));
    }
    void synced(const std::string& path) {
        const std::lock_guard lock(mutex_);
        std::erase_if(undos_, [&](const Undo& undo) { return undo.until == path; });
        // A mapping goes on changing it.
        if (std::ranges::find(mapped_, path) != mapped_.end()) remember(path, path);
    }
    void renamed(const std::string& from, const std::string& to) {
        const std::lock_guard lock(mutex_);
        for (Undo& undo : undos_) {
            if (undo.until == from) undo.path = undo.until = to;
        }
    }
    void undo() {
        const std::lock_guard lock(mutex_);
        for (auto step = undos_.rbegin(); step != undos_.rend(); ++step) restore(*step);
        undos_.clear();
    }

  private:
    struct Undo {
        std::string path;
        std::string until;  // what has to be synced for this to be forgotten
        std::optional<std::string> contents;
    };
    void remember(const std::string& path, const std::string& until) {
        auto contents = readFile(*files_, path, std::uint64_t{1} << 30);
        undos_.push_back({path, until, contents ? std::optional(std::move(*contents)) : std::nullopt});
    }
    void restore(const Undo& step) {
        if (!step.contents) {
            (void)files_->remove(step.path);
            return;
        }
        auto file = files_->open(step.path, Mode::ReadWrite);
        if (!file) return;
        (void)(*file)->truncate(step.contents->size());
        (void)(*file)->writeAt(0, std::as_bytes(std::span(*step.contents)));
    }

    const std::shared_ptr<FileSystem> files_;
    std::mutex mutex_;  // guards all below
    bool remembers_ = false;
    std::vector<Undo> undos_;
    std::vector<std::string> mapped_;
};

class FaultyFileSystem::FaultyFile final : public File {
  public:
    FaultyFile(std::unique_ptr<File> below, std::shared_ptr<Faults> faults, std::shared_ptr<Journal> journal,
               std::string path)
        : below_(std::move(below)),
          faults_(std::move(faults)),
          journal_(std::move(journal)),
          path_(std::move(path)) {}

    Result<std::size_t> readAt(std::uint64_t offset, std::span<std::byte> into) override {
        if (const int error = faults_->meet(Call::Read)) return failure(error);
        auto got = below_->readAt(offset, into);
        if (got) faults_->countRead(*got);
        return got;
    }

    Result<void> writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        if (const int error = faults_->meet(Call::Write))
            return tear(offset, bytes.first(bytes.size() / 2), error);
        journal_->changing(path_);
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
        journal_->changing(path_);
        return below_->truncate(size);
    }

    Result<void> sync() override {
        if (const int error = faults_->meet(Call::Sync)) return failure(error);
        journal_->synced(path_);
        return {};
    }

    Result<void> lock(Lock kind) override {
        if (const int error = faults_->meet(Call::Lock)) return failure(error);
        return below_->lock(kind);
    }

    void unlock() override { below_->unlock(); }

    Result<std::unique_ptr<FileMapping>> map(std::uint64_t size, Access access) override {
        if (const int error = faults_->meet(Call::Map)) return failure(error);
        if (access == Access::ReadWrite) journal_->mapping(path_);
        return below_->map(size, access);
    }

  private:
    Error failure(int error) const { return Error::fromErrno(error, path_); }

    Error tear(std::uint64_t offset, std::span<const std::byte> part, int error) {
        journal_->changing(path_);
        (void)below_->writeAt(offset, part);
        return failure(error);
    }

    std::unique_ptr<File> below_;
    std::shared_ptr<Faults> faults_;
    std::shared_ptr<Journal> journal_;
    std::string path_;
};

FaultyFileSystem::FaultyFileSystem(std::shared_ptr<FileSystem> below)
    : below_(std::move(below)),
      faults_(std::make_shared<Faults>()),
      journal_(std::make_shared<Journal>(below_)) {}
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
    faults_->bytesRead = 0;
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

std::uint64_t FaultyFileSystem::bytesRead() const {
    const std::lock_guard lock(faults_->mutex);
    return faults_->bytesRead;
}

void FaultyFileSystem::rememberUnsynced() {
    journal_->begin();
}

void FaultyFileSystem::dropUnsynced() {
    journal_->undo();
}

void FaultyFileSystem::heal() {
    const std::lock_guard lock(faults_->mutex);
    faults_->untilFailure = 0;
    faults_->room = Faults::kUnbounded;
}

Result<std::unique_ptr<File>> FaultyFileSystem::open(const std::string& path, Mode mode) {
    if (const int error = faults_->meet(Call::Open)) return Error::fromErrno(error, path);
    if (mode != Mode::Read && !below_->info(path)) journal_->naming(path);
    auto file = below_->open(path, mode);
    if (!file) return file;
    return std::unique_ptr<File>(std::make_unique<FaultyFile>(std::move(*file), faults_, journal_, path));
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
    journal_->naming(from);
    journal_->naming(to);
    auto done = below_->rename(from, to);
    if (done) journal_->renamed(from, to);
    return done;
}

Result<void> FaultyFileSystem::remove(const std::string& path) {
    if (const int error = faults_->meet(Call::Remove)) return Error::fromErrno(error, path);
    journal_->naming(path);
    return below_->remove(path);
}

Result<void> FaultyFileSystem::makeDirectory(const std::string& path) {
    if (const int error = faults_->meet(Call::MakeDirectory)) return Error::fromErrno(error, path);
    return below_->makeDirectory(path);
}

Result<void> FaultyFileSystem::syncDirectory(const std::string& path) {
    if (const int error = faults_->meet(Call::SyncDirectory)) return Error::fromErrno(error, path);
    if (auto there = below_->info(path); !there) return std::move(there).error();
    journal_->synced(path);
    return {};
}

}  // namespace kx::testing
