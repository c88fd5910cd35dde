// SPDX-License-Identifier: MIT

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdio>
#include <random>
#include <utility>

#include <KXFoundation/Cache/Disk/DiskSegment.h>

namespace kx::disk {

namespace {

constexpr std::string_view kPrefix = "segment-";
// What a file grows by: as much again as it has, within these bounds.
constexpr std::uint64_t kShortestStep = 4 << 10, kLongestStep = 128 << 10;

std::uint64_t freshSalt() {
    std::random_device random;
    return std::uint64_t{random()} << 32 | random();
}

}  // namespace

std::string DiskSegment::nameOf(std::uint32_t number) {
    char name[32];
    std::snprintf(name, sizeof name, "segment-%08x", number);
    return name;
}

std::optional<std::uint32_t> DiskSegment::numberOf(std::string_view name) {
    if (name.size() != kPrefix.size() + 8 || !name.starts_with(kPrefix)) return std::nullopt;
    std::uint32_t number = 0;
    const auto [end, error] =
        std::from_chars(name.data() + kPrefix.size(), name.data() + name.size(), number, 16);
    if (error != std::errc() || end != name.data() + name.size() || nameOf(number) != name)
        return std::nullopt;
    return number;
}

Result<std::shared_ptr<DiskSegment>> DiskSegment::create(std::shared_ptr<FileSystem> files,
                                                         const std::string& folder, std::uint32_t number) {
    std::shared_ptr<DiskSegment> made(new DiskSegment(std::move(files), folder + "/" + nameOf(number)));
    auto file = made->files_->open(made->path_, FileSystem::Mode::CreateNew);
    if (!file) {
        (void)made->files_->remove(made->path_);
        file = made->files_->open(made->path_, FileSystem::Mode::CreateNew);
    }
    if (!file) return std::move(file).error();
    made->file_ = std::move(*file);
    made->isWritable_ = true;
    made->header_.number = number;
    made->header_.salt = freshSalt();
    made->header_.check = made->header_.expectedCheck();
    if (auto done = made->write(0, std::as_bytes(std::span(&made->header_, 1))); !done) {
        (void)made->files_->remove(made->path_);
        return std::move(done).error();
    }
    return made;
}

Result<std::shared_ptr<DiskSegment>> DiskSegment::open(std::shared_ptr<FileSystem> files,
                                                       const std::string& folder, std::uint32_t number) {
    std::shared_ptr<DiskSegment> found(new DiskSegment(std::move(files), folder + "/" + nameOf(number)));
    auto got = found->readAt(0, std::as_writable_bytes(std::span(&found->header_, 1)));
    if (!got) return std::move(got).error();
    const SegmentHeader& header = found->header_;
    if (*got < sizeof header) return Error{ErrorKind::Ended, 0, found->path_};
    if (header.magic != SegmentHeader::kMagic || header.number != number ||
        header.check != header.expectedCheck())
        return Error{ErrorKind::Corrupt, 0, found->path_};
    return found;
}

/// The file, for reading or for writing too. Only a caller that knows it to be there asks for the latter,
/// which would make it anew.
Result<File*> DiskSegment::opened(FileSystem::Mode mode) {
    const bool writes = mode != FileSystem::Mode::Read;
    if (!file_ || (writes && !isWritable_)) {
        auto file = files_->open(path_, mode);
        if (!file) return std::move(file).error();
        file_ = std::move(*file);
        isWritable_ = writes;
    }
    return file_.get();
}

Result<void> DiskSegment::write(std::uint64_t offset, std::span<const std::byte> bytes) {
    auto file = opened(FileSystem::Mode::ReadWrite);
    return file ? (*file)->writeAt(offset, bytes) : Result<void>(std::move(file).error());
}

Result<void> DiskSegment::append(std::uint64_t offset, std::span<const std::byte> bytes) {
    const std::uint64_t end = offset + bytes.size();
    if (end <= zerosEnd_ || bytes.size() >= kLongestStep) return write(offset, bytes);
    const std::uint64_t step = std::clamp(std::bit_ceil(end), kShortestStep, kLongestStep);
    const std::uint64_t zerosEnd = (end + step - 1) / step * step;
    std::vector<std::byte> longer(zerosEnd - offset);
    std::ranges::copy(bytes, longer.begin());
    auto written = write(offset, longer);
    if (written) zerosEnd_ = zerosEnd;
    if (!written && written.error().kind == ErrorKind::Full) return write(offset, bytes);
    return written;
}

Result<std::uint64_t> DiskSegment::size() {
    auto file = opened(FileSystem::Mode::Read);
    return file ? (*file)->size() : Result<std::uint64_t>(std::move(file).error());
}

Result<std::size_t> DiskSegment::readAt(std::uint64_t offset, std::span<std::byte> into) {
    auto file = opened(FileSystem::Mode::Read);
    return file ? (*file)->readAt(offset, into) : Result<std::size_t>(std::move(file).error());
}

Result<void> DiskSegment::truncate(std::uint64_t size) {
    auto file = opened(FileSystem::Mode::ReadWrite);
    return file ? (*file)->truncate(size) : Result<void>(std::move(file).error());
}

Result<void> DiskSegment::seal(std::span<const Record> records, std::uint64_t entriesEnd) {
    std::vector<std::byte> table(records.size() * kRecordSize + sizeof(Footer));
    for (std::size_t i = 0; i < records.size(); ++i) writeRecord(records[i], table.data() + i * kRecordSize);
    const auto rows = std::span(table).first(records.size() * kRecordSize);
    Footer footer;
    footer.count = static_cast<std::uint32_t>(records.size());
    footer.entriesEnd = static_cast<std::uint32_t>(entriesEnd);
    footer.check = footer.expectedCheck(salt(), rows);
    std::memcpy(table.data() + rows.size(), &footer, sizeof footer);
    auto end = size();  // behind whatever a damaged segment holds beyond its entries
    if (!end) return std::move(end).error();
    if (*end > entriesEnd && *end == zerosEnd_) {
        if (auto cut = truncate(entriesEnd); !cut) return cut;
        end = entriesEnd;
    }
    return write(std::max(*end, entriesEnd), table);
}

/// Once for all entries: a mapping made anew faults every page in again. So it has room for the last entry
/// too, which may begin just before the segment is full.
Result<std::shared_ptr<const FileMapping>> DiskSegment::mapped(std::uint64_t end) {
    constexpr std::uint64_t kRoom = 2 * kLargestSegment;
    if (mapping_ && mapping_->bytes().size() >= end) return mapping_;
    auto file = opened(FileSystem::Mode::Read);
    if (!file) return std::move(file).error();
    auto mapping = (*file)->map(std::max(end, kRoom), File::Access::Read);
    if (!mapping) return std::move(mapping).error();
    mapping_ = std::move(*mapping);
    return mapping_;
}

}  // namespace kx::disk
