// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// A part of a file as memory, until its destructor; the file may be closed before. What other processes and
/// writeAt change in the file shows in it.
class KX_EXPORT FileMapping {
  public:
    virtual ~FileMapping() = default;
    /// Bytes beyond the end of the file may be touched only once the file has grown over them: see
    /// GuardedRead.h.
    [[nodiscard]] std::span<std::byte> bytes() const noexcept { return bytes_; }

  protected:
    explicit FileMapping(std::span<std::byte> bytes) noexcept : bytes_(bytes) {}

  private:
    std::span<std::byte> bytes_;
};

/// An open file. Closed by its destructor. One thread at a time, but for readAt and sync, which any may call.
class KX_EXPORT File {
  public:
    virtual ~File() = default;

    /// Reads up to `into.size()` bytes from `offset`; fewer only at the end of the file.
    virtual Result<std::size_t> readAt(std::uint64_t offset, std::span<std::byte> into) = 0;
    /// Writes all bytes at `offset`, growing the file; on failure some of them may be there.
    virtual Result<void> writeAt(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    virtual Result<std::uint64_t> size() = 0;
    /// As FileSystem::Info has it, also when another file lies under the name by now.
    virtual Result<std::uint64_t> identity() = 0;
    virtual Result<void> setPermissions(std::uint32_t permissions) = 0;
    virtual Result<void> truncate(std::uint64_t size) = 0;
    /// Waits until the contents (and the size) would survive a power cut.
    virtual Result<void> sync() = 0;

    static constexpr std::chrono::seconds kLongestLock{10};
    enum class Lock : std::uint8_t { Shared, Exclusive };
    /// Takes an advisory lock on the whole file, across processes; given back by unlock() or when the file is
    /// closed. Busy if another holds it for kLongestLock, as a stopped process does.
    virtual Result<void> lock(Lock kind) = 0;
    virtual void unlock() = 0;

    enum class Access : std::uint8_t { Read, ReadWrite };
    /// The first `size` bytes of the file as memory.
    virtual Result<std::unique_ptr<FileMapping>> map(std::uint64_t size, Access access) = 0;
};

/// The port of the file system: POSIX, or a double that fails, tears and forgets as a test asks.
/// Paths are UTF-8; any thread.
class KX_EXPORT FileSystem {
  public:
    virtual ~FileSystem() = default;

    enum class Mode : std::uint8_t {
        Read,
        ReadWrite,          ///< made (mode 0600) if missing
        CreateNew,          ///< fails if it exists; mode 0600
        CreateNewDocument,  ///< fails if it exists; mode 0666 less the process's mask
    };
    struct Info {
        enum class Kind : std::uint8_t { File, Directory, Other } kind;
        std::uint64_t size;
        std::int64_t modifiedNanoseconds;  ///< since 1970
        std::uint64_t identity;            ///< the inode: another file under the same name has another one
        std::uint32_t permissions;         ///< the mode's lower 12 bits
        bool operator==(const Info&) const = default;
    };

    virtual Result<std::unique_ptr<File>> open(const std::string& path, Mode mode) = 0;
    virtual Result<Info> info(const std::string& path) = 0;
    virtual Result<std::vector<std::string>> list(const std::string& directory) = 0;
    /// Replaces what stands under `to`, atomically.
    virtual Result<void> rename(const std::string& from, const std::string& to) = 0;
    /// Removes a file or an empty directory.
    virtual Result<void> remove(const std::string& path) = 0;
    /// Makes one directory (mode 0700); an existing one is no error.
    virtual Result<void> makeDirectory(const std::string& path) = 0;
    /// Waits until the names in the directory would survive a power cut.
    virtual Result<void> syncDirectory(const std::string& path) = 0;

    static PortSlot<FileSystem>& slot();
    static std::shared_ptr<FileSystem> makeDefault();
};

// Steps that every store needs, over the port.

/// The whole file; TooLarge beyond `limit` bytes, before anything is allocated.
KX_EXPORT Result<std::string> readFile(FileSystem& files, const std::string& path, std::uint64_t limit);

/// Who may read a file that replaceFile writes.
enum class Kept : std::uint8_t {
    Private,   ///< its owner alone (mode 0600)
    Document,  ///< who may read the one that it replaces, as far as the file system has modes; where there is
               ///< none, who may by the process's mask
};

/// Replaces a file so that a kill or power cut at any instant leaves the old or the new contents: a temporary
/// file beside it, sync, rename, sync of the directory. The temporary file is removed on failure.
KX_EXPORT Result<void> replaceFile(FileSystem& files, const std::string& path, std::string_view contents,
                                   Kept kept = Kept::Private);

/// Which temporary files of replaceFile are left over from a process that was killed.
enum class LeftOver : std::uint8_t {
    All,   ///< the caller holds a lock that everybody takes who replaces this file
    Dead,  ///< those of a process that is no more and an hour old: elsewhere its number may be in use
};

/// Removes what is left over beside the file, as far as it can. Lists the folder.
KX_EXPORT void removeLeftOver(FileSystem& files, const std::string& path, LeftOver which);

/// Opens the file, made with its directories if missing, and locks it: held as long as the answer lives.
KX_EXPORT Result<std::unique_ptr<File>> lockFile(FileSystem& files, const std::string& path, File::Lock kind);

/// Makes the directory and those above it.
KX_EXPORT Result<void> makeDirectories(FileSystem& files, const std::string& path);

/// "/a/b/c" gives "/a/b"; "/a" gives "/"; a name alone gives ".".
[[nodiscard]] KX_EXPORT std::string directoryOf(std::string_view path);

}  // namespace kx
