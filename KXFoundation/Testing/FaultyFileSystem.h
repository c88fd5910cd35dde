// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kx::testing {

/// A file system that counts its calls and fails as a test asks, over a real one. Syncs are counted and
/// remembered, but cost nothing: no test loses its power in earnest. Any thread.
///
///     auto files = std::make_shared<FaultyFileSystem>();
///     const ScopedPort<FileSystem> scope(files);
///     files->failCall(3);
class KX_EXPORT FaultyFileSystem final : public FileSystem {
  public:
    enum class Call : std::uint8_t {
        Open,
        Info,
        List,
        Rename,
        Remove,
        MakeDirectory,
        SyncDirectory,  // of the file system
        Read,
        Write,
        Size,
        SetPermissions,
        Truncate,
        Sync,
        Lock,
        Map,  // of a file
    };
    enum class Then : std::uint8_t {
        Recovers,     ///< the calls after the failing one work
        StaysBroken,  ///< they fail too: what a kill at that call would leave on the disk
    };

    explicit FaultyFileSystem(std::shared_ptr<FileSystem> below = FileSystem::makeDefault());
    ~FaultyFileSystem() override;

    /// The calls since the last resetCounts(), failed ones included: of all kinds, or of one.
    [[nodiscard]] std::size_t calls() const;
    [[nodiscard]] std::size_t calls(Call call) const;
    void resetCounts();

    /// Makes the `number`th call from now on (1 is the next) fail. A write that fails is torn: the first half
    /// of its bytes is there.
    void failCall(std::size_t number, int systemError = EIO, Then then = Then::Recovers);
    /// The disk has room for so many more bytes; a write beyond them fills it, then fails with ENOSPC.
    void setRoom(std::uint64_t bytes);
    /// From now on remembers what is not synced, so that dropUnsynced() can take it away.
    void rememberUnsynced();
    /// A power cut: each change that was not synced (a write, the making, renaming or removal of a file, what
    /// was written through a mapping) is kept if `keeps` says so, and lost else; the machine's next start has
    /// another identifier. Answers how many changes there were. Nothing may be using the files.
    std::size_t dropUnsynced(const std::function<bool()>& keeps = [] { return false; });
    /// The bytes that were read with readAt since the last resetCounts().
    [[nodiscard]] std::uint64_t bytesRead() const;
    /// Every call works again, with room without bound.
    void heal();

    Result<std::unique_ptr<File>> open(const std::string& path, Mode mode) override;
    Result<Info> info(const std::string& path) override;
    Result<std::vector<std::string>> list(const std::string& directory) override;
    Result<void> rename(const std::string& from, const std::string& to) override;
    Result<void> remove(const std::string& path) override;
    Result<void> makeDirectory(const std::string& path) override;
    Result<void> syncDirectory(const std::string& path) override;

  private:
    class Faults;
    class Journal;
    class FaultyFile;

    std::shared_ptr<FileSystem> below_;
    std::shared_ptr<Faults> faults_;
    std::shared_ptr<Journal> journal_;
};

}  // namespace kx::testing
