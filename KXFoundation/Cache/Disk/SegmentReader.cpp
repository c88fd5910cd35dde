// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Cache/Disk/SegmentReader.h>

namespace kx::disk {

namespace {

/// A window over a file: entries are read one block at a time, so that a row of small ones costs one call.
class Window {
  public:
    Window(DiskSegment& segment, std::uint64_t fileSize) : segment_(segment), fileSize_(fileSize) {}

    /// The bytes there, at least `size` of them; empty beyond the end of the file.
    Result<std::span<const std::byte>> at(std::uint64_t offset, std::size_t size) {
        if (offset < start_ || offset + size > start_ + bytes_.size()) {
            if (offset > fileSize_ || size > fileSize_ - offset) return std::span<const std::byte>();
            bytes_.resize(std::min<std::uint64_t>(std::max(size, kBlock), fileSize_ - offset));
            auto got = segment_.readAt(offset, bytes_);
            if (!got) return std::move(got).error();
            bytes_.resize(*got);
            start_ = offset;
            if (*got < size) return std::span<const std::byte>();
        }
        return std::span<const std::byte>(bytes_).subspan(offset - start_);
    }
    [[nodiscard]] std::uint64_t fileSize() const noexcept { return fileSize_; }

  private:
    static constexpr std::size_t kBlock = 256;
    DiskSegment& segment_;
    const std::uint64_t fileSize_;
    std::uint64_t start_ = 0;
    std::vector<std::byte> bytes_;
};

bool isPlausible(const EntryHeader& header, std::uint64_t offset, std::uint64_t fileSize) {
    return header.form >= Form::Removal && header.form <= kLastForm && header.payloadSize <= kLargestValue &&
           header.entrySize() <= fileSize - offset;
}

/// The entry at that place, if there is one.
Result<std::optional<Record>> entryAt(DiskSegment& segment, Window& window, std::uint64_t offset) {
    auto bytes = window.at(offset, sizeof(EntryHeader));
    if (!bytes) return std::move(bytes).error();
    if (bytes->empty()) return std::optional<Record>();
    const auto header = readStruct<EntryHeader>(bytes->data());
    if (!isPlausible(header, offset, window.fileSize())) return std::optional<Record>();
    bytes = window.at(offset, sizeof(EntryHeader) + header.keySize);
    if (!bytes) return std::move(bytes).error();
    if (bytes->empty()) return std::optional<Record>();
    const auto* key = reinterpret_cast<const char*>(bytes->data() + sizeof(EntryHeader));
    const std::uint64_t keyHash = hashOfKey({key, header.keySize});
    const auto place = static_cast<std::uint32_t>(offset);
    if (header.check != header.expectedCheck(keyHash, segment.salt(), place)) return std::optional<Record>();
    return std::optional(Record{
        keyHash, place, header.payloadSize, {header.seconds, header.fraction}, header.form, header.keySize});
}

bool liesInOrder(std::span<const Record> records, std::uint64_t entriesEnd) {
    std::uint64_t end = sizeof(SegmentHeader);
    for (const Record& record : records) {
        if (record.offset < end || record.end() > entriesEnd) return false;
        end = record.end();
    }
    return true;
}

}  // namespace

Result<std::optional<SegmentEntries>> readFooter(DiskSegment& segment) {
    using Answer = std::optional<SegmentEntries>;
    auto size = segment.size();
    if (!size) return std::move(size).error();
    if (*size < sizeof(SegmentHeader) + sizeof(Footer)) return Answer();
    std::vector<std::byte> bytes(sizeof(Footer));
    auto got = segment.readAt(*size - sizeof(Footer), bytes);
    if (!got) return std::move(got).error();
    const auto footer = readStruct<Footer>(bytes.data());
    const std::uint64_t tableSize = std::uint64_t{footer.count} * kRecordSize;
    const std::uint64_t tableEnd = *size - sizeof(Footer);
    if (footer.magic != Footer::kMagic || tableSize > tableEnd - sizeof(SegmentHeader)) return Answer();
    bytes.resize(tableSize);
    got = segment.readAt(tableEnd - tableSize, bytes);
    if (!got) return std::move(got).error();
    if (footer.check != footer.expectedCheck(segment.salt(), bytes)) return Answer();
    SegmentEntries entries;
    entries.end = footer.entriesEnd;
    entries.records.reserve(footer.count);
    for (std::size_t i = 0; i < footer.count; ++i)
        entries.records.push_back(readRecord(bytes.data() + i * kRecordSize));
    if (entries.end > tableEnd - tableSize || !liesInOrder(entries.records, entries.end)) return Answer();
    return Answer(std::move(entries));
}

Result<SegmentEntries> walkEntries(DiskSegment& segment, std::uint64_t from, std::uint64_t known) {
    auto size = segment.size();
    if (!size) return std::move(size).error();
    Window window(segment, *size);
    SegmentEntries entries;
    entries.end = from;
    for (std::uint64_t offset = from; offset < *size;) {
        auto record = entryAt(segment, window, offset);
        if (!record) return std::move(record).error();
        if (*record) {
            entries.records.push_back(**record);
            entries.end = offset = (*record)->end();
        } else if (offset < known) {
            entries.isDamaged = true;
            ++offset;
        } else {
            break;
        }
    }
    if (entries.end < known) entries.isDamaged = true;
    return entries;
}

}  // namespace kx::disk
