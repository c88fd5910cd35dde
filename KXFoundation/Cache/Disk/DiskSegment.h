// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Cache/Disk/DiskFormat.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kx::disk {

/// One file of the log: a header, entries, and once it is full a table of them. Private to Cache; one thread
/// at a time.
class DiskSegment {
  public:
    /// Makes the file, in place of one that a killed process left under that number.
    [[nodiscard]] static Result<std::shared_ptr<DiskSegment>> create(std::shared_ptr<FileSystem> files,
                                                                     const std::string& folder,
                                                                     std::uint32_t number);
    /// Corrupt or Ended if the header is no such header.
    [[nodiscard]] static Result<std::shared_ptr<DiskSegment>> open(std::shared_ptr<FileSystem> files,
                                                                   const std::string& folder,
                                                                   std::uint32_t number);

    [[nodiscard]] std::uint32_t number() const noexcept { return header_.number & 0xFFFF'FFFF; }
    [[nodiscard]] std::uint64_t salt() const noexcept { return header_.salt; }
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

    /// Writes behind all entries. Where that makes the file longer it takes zeros along, which the next ones
    /// go over: the system writes into a file at a third of what it takes to make it longer page by page, and
    /// frees sooner what came in long writes.
    [[nodiscard]] Result<void> append(std::uint64_t offset, std::span<const std::byte> bytes);
    [[nodiscard]] Result<std::uint64_t> size();
    [[nodiscard]] Result<std::size_t> readAt(std::uint64_t offset, std::span<std::byte> into);
    [[nodiscard]] Result<void> truncate(std::uint64_t size);
    /// Appends the table of the entries; nothing is written behind it any more.
    [[nodiscard]] Result<void> seal(std::span<const Record> records, std::uint64_t entriesEnd);

    /// The first `end` bytes and more, mapped; other threads may read them as long as they hold the mapping.
    [[nodiscard]] Result<std::shared_ptr<const FileMapping>> mapped(std::uint64_t end);
    /// The open file, for a sync outside of any lock; absent if nothing was written through it.
    [[nodiscard]] const std::shared_ptr<File>& file() const noexcept { return file_; }
    /// Gives the open file back; the next call opens it again.
    void close() noexcept { file_ = nullptr; }

    [[nodiscard]] static std::string nameOf(std::uint32_t number);
    /// The number of a segment's file, none for any other name.
    [[nodiscard]] static std::optional<std::uint32_t> numberOf(std::string_view name);

  private:
    DiskSegment(std::shared_ptr<FileSystem> files, std::string path)
        : files_(std::move(files)), path_(std::move(path)) {}
    [[nodiscard]] Result<File*> opened(FileSystem::Mode mode);
    [[nodiscard]] Result<void> write(std::uint64_t offset, std::span<const std::byte> bytes);

    const std::shared_ptr<FileSystem> files_;
    const std::string path_;
    SegmentHeader header_;
    std::shared_ptr<File> file_;
    bool isWritable_ = false;
    std::uint64_t zerosEnd_ = 0;  // where those that this object appended end
    std::shared_ptr<const FileMapping> mapping_;
};

}  // namespace kx::disk
