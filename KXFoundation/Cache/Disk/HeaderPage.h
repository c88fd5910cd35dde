// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Cache/Disk/DiskFormat.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/GuardedRead.h>

namespace kx::disk {

/// The page that the processes of a folder share: where the log begins and ends, and the lock under which
/// that changes. A process that finds the tail moved has entries to read. Never synced: after a power cut the
/// segments say more. Somebody may cut the file short or write over it at any time: then this page is lost,
/// and is to be opened anew. Private to Cache.
class HeaderPage {
  public:
    enum class Access : bool { Read, ReadWrite };
    /// Opens the page. For writing makes it if it is missing or is none, and holds its lock: nobody finds a
    /// page made anew before what lies in the folder is known.
    [[nodiscard]] static Result<std::unique_ptr<HeaderPage>> open(FileSystem& files, const std::string& path,
                                                                  Access access);

    /// Puts a page of an empty log that goes on at `tail` in the place of the file, which stays as it is for
    /// those that have it open.
    [[nodiscard]] static Result<void> replace(FileSystem& files, const std::string& path, Position tail);

    [[nodiscard]] bool isWritable() const noexcept { return isWritable_; }
    /// The file's inode: another page lies under the name if that has another one.
    [[nodiscard]] std::uint64_t identity() const noexcept { return identity_; }

    /// Between processes and between stores of one process.
    [[nodiscard]] Result<void> lock() { return file_->lock(File::Lock::Exclusive); }
    void unlock() { file_->unlock(); }

    /// Where the log begins and ends.
    struct Ends {
        Position head, tail;
    };
    /// Absent if the page is lost.
    [[nodiscard]] std::optional<Ends> ends() const noexcept;
    // False if the page is lost.
    [[nodiscard]] bool setHead(Position position) noexcept { return store(kHead, position.packed()); }
    /// Everything before the position is in the segments when this is called.
    [[nodiscard]] bool setTail(Position position) noexcept { return store(kTail, position.packed()); }

  private:
    static constexpr std::size_t kSize = 4096;
    static constexpr std::size_t kMagicWord = 0, kHead = 8, kTail = 16;
    static constexpr std::uint64_t kMagic = 0x0131'4448'5358'4B00;  // "\0KXSHD1\1"

    HeaderPage(std::unique_ptr<File> file, std::unique_ptr<FileMapping> page, std::uint64_t identity,
               bool writable)
        : file_(std::move(file)), page_(std::move(page)), identity_(identity), isWritable_(writable) {}
    [[nodiscard]] std::uint64_t& word(std::size_t offset) const noexcept {
        return *reinterpret_cast<std::uint64_t*>(page_->bytes().data() + offset);
    }
    [[nodiscard]] std::uint64_t load(std::size_t offset) const noexcept {
        return std::atomic_ref(word(offset)).load(std::memory_order_acquire);
    }
    [[nodiscard]] bool store(std::size_t offset, std::uint64_t value) noexcept;

    const std::unique_ptr<File> file_;
    const std::unique_ptr<FileMapping> page_;
    const GuardedPages guard_{page_->bytes()};
    const std::uint64_t identity_;
    const bool isWritable_;
};

}  // namespace kx::disk
