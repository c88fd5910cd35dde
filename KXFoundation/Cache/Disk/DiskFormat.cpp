// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Cache/Disk/DiskFormat.h>

namespace kx::disk {

namespace {

constexpr std::uint64_t mixed(std::uint64_t a, std::uint64_t b) noexcept {
    return (a ^ b) * 0x9E3779B185EBCA87ULL;
}

std::string_view textOf(const void* bytes, std::size_t size) noexcept {
    return {static_cast<const char*>(bytes), size};
}

}  // namespace

Stamp Stamp::at(std::chrono::system_clock::time_point time) noexcept {
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 256>>;
    const std::int64_t ticks = std::chrono::floor<Ticks>(time.time_since_epoch()).count();
    const std::int64_t kept = std::clamp<std::int64_t>(ticks, 0, 0xFF'FFFF'FFFF);
    return {static_cast<std::uint32_t>(kept >> 8), static_cast<std::uint8_t>(kept)};
}

std::uint64_t SegmentHeader::expectedCheck() const noexcept {
    return hashOfKey(textOf(this, sizeof(SegmentHeader) - sizeof check));
}

std::uint32_t EntryHeader::expectedCheck(std::uint64_t keyHash, std::uint64_t salt,
                                         std::uint32_t offset) const noexcept {
    const std::uint64_t fields = hashOfKey(textOf(&payloadSize, sizeof(EntryHeader) - sizeof check));
    return static_cast<std::uint32_t>(mixed(mixed(fields, keyHash), salt + offset) >> 32);
}

std::uint64_t Footer::expectedCheck(std::uint64_t salt, std::span<const std::byte> records) const noexcept {
    return mixed(mixed(hashOfContents(records), std::uint64_t{count} << 32 | entriesEnd), salt);
}

void writeRecord(const Record& record, std::byte* into) noexcept {
    std::memcpy(into, &record.keyHash, 8);
    std::memcpy(into + 8, &record.offset, 4);
    std::memcpy(into + 12, &record.payloadSize, 4);
    std::memcpy(into + 16, &record.stamp.seconds, 4);
    std::memcpy(into + 20, &record.stamp.fraction, 1);
    std::memcpy(into + 21, &record.form, 1);
    std::memcpy(into + 22, &record.keySize, 2);
}

Record readRecord(const std::byte* from) noexcept {
    Record record;
    std::memcpy(&record.keyHash, from, 8);
    std::memcpy(&record.offset, from + 8, 4);
    std::memcpy(&record.payloadSize, from + 12, 4);
    std::memcpy(&record.stamp.seconds, from + 16, 4);
    std::memcpy(&record.stamp.fraction, from + 20, 1);
    std::memcpy(&record.form, from + 21, 1);
    std::memcpy(&record.keySize, from + 22, 2);
    return record;
}

}  // namespace kx::disk
