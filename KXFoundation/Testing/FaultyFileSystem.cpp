// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <mutex>
#include <numeric>
#include <optional>
#include <set>
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

    /// What tells this start of the machine from others.
    std::byte boot() {
        const std::lock_guard lock(mutex);
        return std::byte{boots};
    }
    void cutPower() {
        const std::lock_guard lock(mutex);
        ++boots;
    }

    static constexpr std::uint64_t kUnbounded = std::numeric_limits<std::uint64_t>::max();

    std::mutex mutex;  // guards all below
    std::array<std::size_t, static_cast<std::size_t>(Call::Map) + 1>
        counts{};  // by kind, of which that is the last
    std::uint64_t bytesRead = 0;
    std::size_t untilFailure = 0;  // 1: the next call fails; 0: none does
    int systemError = 0;
    Then then = Then::Recovers;
    std::uint64_t room = kUnbounded;
    std::uint8_t boots = 0;
};

/// The changes that are not synced yet. Contents belong to files, whatever they are called, and names to
/// their directories: a power cut keeps or loses each by itself.
class FaultyFileSystem::Journal {
  public:
    explicit Journal(std::shared_ptr<FileSystem> files) : files_(std::move(files)) {}

    void begin() {
        const std::lock_guard lock(mutex_);
        forget();
        remembers_ = true;
        for (const std::string& path : mapped_) (void)fileAt(path);
    }
    /// Before any change of the name or of the contents of the file that has it.
    void touching(const std::string& path) {
        const std::lock_guard lock(mutex_);
        if (remembers_) (void)fileAt(path);
    }
    void writing(const std::string& path, std::uint64_t offset, std::span<const std::byte> bytes) {
        changing(path, offset, std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    }
    void truncating(const std::string& path, std::uint64_t size) { changing(path, size, std::nullopt); }
    void mapping(const std::string& path) {
        touching(path);
        const std::lock_guard lock(mutex_);
        mapped_.insert(path);
    }
    void made(const std::string& path) { named({{path, std::make_shared<std::string>()}}); }
    void removed(const std::string& path) { named({{path, nullptr}}); }
    void renamed(const std::string& from, const std::string& to) {
        Contents file;
        {
            const std::lock_guard lock(mutex_);
            if (remembers_) file = present_[from];
        }
        named({{to, file}, {from, nullptr}});
    }
    void synced(const std::string& path) {
        const std::lock_guard lock(mutex_);
        if (!remembers_) return;
        const Contents file = fileAt(path);
        if (!file) return;
        std::erase_if(changes_, [&](const Change& change) {
            if (change.file != file) return false;
            apply(change);
            return true;
        });
        if (mapped_.contains(path)) *file = read(path);
    }
    void syncedDirectory(const std::string& directory) {
        const std::lock_guard lock(mutex_);
        std::erase_if(changes_, [&](Change& change) {
            std::erase_if(change.names, [&](const auto& name) {
                if (directoryOf(name.first) != directory) return false;
                synced_[name.first] = name.second;
                return true;
            });
            return !change.file && change.names.empty();
        });
    }
    std::size_t cut(const std::function<bool()>& keeps) {
        const std::lock_guard lock(mutex_);
        if (!remembers_) return 0;
        std::size_t asked = changes_.size();
        for (const Change& change : changes_) {
            if (keeps()) apply(change);
        }
        for (const std::string& path : mapped_) {
            const Contents file = fileAt(path);
            if (!file) continue;
            ++asked;
            if (keeps()) *file = read(path);
        }
        for (const auto& [path, file] : synced_) restore(path, file);
        forget();
        return asked;
    }

  private:
    using Contents = std::shared_ptr<std::string>;  // of a file, as far as they are synced
    using Names = std::map<std::string, Contents>;  // none: no file has the name
    /// Of a file's contents or, where there is no file, of names, all of them at once.
    struct Change {
        Contents file;
        std::uint64_t offset;  // without bytes: the file's size
        std::optional<std::string> bytes;
        Names names;
    };

    void forget() {
        remembers_ = false;
        changes_.clear();
        synced_.clear();
        present_.clear();
    }
    std::string read(const std::string& path) {
        auto contents = readFile(*files_, path, std::uint64_t{1} << 30);
        return contents ? std::move(*contents) : std::string();
    }
    [[nodiscard]] bool isFile(const std::string& path) {
        const auto info = files_->info(path);
        return info && info->kind == Info::Kind::File;
    }
    Contents fileAt(const std::string& path) {
        const auto [found, isNew] = present_.try_emplace(path);
        if (isNew && isFile(path)) found->second = std::make_shared<std::string>(read(path));
        if (isNew) synced_[path] = found->second;
        return found->second;
    }
    void changing(const std::string& path, std::uint64_t offset, std::optional<std::string> bytes) {
        const std::lock_guard lock(mutex_);
        if (remembers_) changes_.push_back({fileAt(path), offset, std::move(bytes), {}});
    }
    void named(Names names) {
        const std::lock_guard lock(mutex_);
        if (!remembers_) return;
        for (const auto& [path, file] : names) present_[path] = file;
        changes_.push_back({nullptr, 0, std::nullopt, std::move(names)});
    }
    void apply(const Change& change) {
        for (const auto& [path, file] : change.names) synced_[path] = file;
        if (!change.file) return;
        if (!change.bytes) return change.file->resize(change.offset);
        const std::size_t end = change.offset + change.bytes->size();
        if (change.file->size() < end) change.file->resize(end);
        change.file->replace(change.offset, change.bytes->size(), *change.bytes);
    }
    void restore(const std::string& path, const Contents& contents) {
        if (!contents) {
            if (isFile(path)) (void)files_->remove(path);
            return;
        }
        (void)makeDirectories(*files_, directoryOf(path));
        auto file = files_->open(path, Mode::ReadWrite);
        if (!file) return;
        (void)(*file)->truncate(contents->size());
        (void)(*file)->writeAt(0, std::as_bytes(std::span(*contents)));
    }

    const std::shared_ptr<FileSystem> files_;
    std::mutex mutex_;  // guards all below
    bool remembers_ = false;
    std::vector<Change> changes_;  // not synced, the latest last
    Names synced_, present_;       // of the files that were touched
    std::set<std::string> mapped_;
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
        if (got && *got > 0 && path_ == kBootIdentifier) into[0] ^= faults_->boot();
        return got;
    }

    Result<void> writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        if (const int error = faults_->meet(Call::Write))
            return tear(offset, bytes.first(bytes.size() / 2), error);
        const std::size_t room = faults_->takeRoom(bytes.size());
        if (room < bytes.size()) return tear(offset, bytes.first(room), ENOSPC);
        journal_->writing(path_, offset, bytes);
        return below_->writeAt(offset, bytes);
    }

    Result<std::uint64_t> size() override {
        if (const int error = faults_->meet(Call::Size)) return failure(error);
        return below_->size();
    }

    Result<std::uint64_t> identity() override {
        if (const int error = faults_->meet(Call::Info)) return failure(error);
        return below_->identity();
    }

    Result<void> setPermissions(std::uint32_t permissions) override {
        if (const int error = faults_->meet(Call::SetPermissions)) return failure(error);
        return below_->setPermissions(permissions);
    }

    Result<void> truncate(std::uint64_t size) override {
        if (const int error = faults_->meet(Call::Truncate)) return failure(error);
        journal_->truncating(path_, size);
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
    static constexpr std::string_view kBootIdentifier = "/proc/sys/kernel/random/boot_id";

    Error failure(int error) const { return Error::fromErrno(error, path_); }

    Error tear(std::uint64_t offset, std::span<const std::byte> part, int error) {
        journal_->writing(path_, offset, part);
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

std::size_t FaultyFileSystem::dropUnsynced(const std::function<bool()>& keeps) {
    faults_->cutPower();
    return journal_->cut(keeps);
}

void FaultyFileSystem::heal() {
    const std::lock_guard lock(faults_->mutex);
    faults_->untilFailure = 0;
    faults_->room = Faults::kUnbounded;
}

Result<std::unique_ptr<File>> FaultyFileSystem::open(const std::string& path, Mode mode) {
    if (const int error = faults_->meet(Call::Open)) return Error::fromErrno(error, path);
    const bool isMade = mode != Mode::Read && !below_->info(path);
    if (isMade) journal_->touching(path);
    auto file = below_->open(path, mode);
    if (!file) return file;
    if (isMade) journal_->made(path);
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
    journal_->touching(from);
    journal_->touching(to);
    auto done = below_->rename(from, to);
    if (done) journal_->renamed(from, to);
    return done;
}

Result<void> FaultyFileSystem::remove(const std::string& path) {
    if (const int error = faults_->meet(Call::Remove)) return Error::fromErrno(error, path);
    journal_->touching(path);
    auto done = below_->remove(path);
    if (done) journal_->removed(path);
    return done;
}

Result<void> FaultyFileSystem::makeDirectory(const std::string& path) {
    if (const int error = faults_->meet(Call::MakeDirectory)) return Error::fromErrno(error, path);
    return below_->makeDirectory(path);
}

Result<void> FaultyFileSystem::syncDirectory(const std::string& path) {
    if (const int error = faults_->meet(Call::SyncDirectory)) return Error::fromErrno(error, path);
    if (auto there = below_->info(path); !there) return std::move(there).error();
    journal_->syncedDirectory(path);
    return {};
}

}  // namespace kx::testing
