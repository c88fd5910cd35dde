// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include <KXFoundation/Platform/Runtime/ContentHash.h>

/// The bytes of a disk cache, as docs/formats/disk-cache.md tells them. Private to Cache.
namespace kx::disk {

static_assert(std::endian::native == std::endian::little, "the files are little-endian");

/// A place in the log. Ordered; packed into one word for the header page.
struct Position {
    std::uint32_t segment = 0;
    std::uint32_t offset = 0;
    auto operator<=>(const Position&) const = default;
    [[nodiscard]] std::uint64_t packed() const noexcept { return std::uint64_t{segment} << 32 | offset; }
    [[nodiscard]] static Position unpacked(std::uint64_t word) noexcept {
        return {static_cast<std::uint32_t>(word >> 32), static_cast<std::uint32_t>(word)};
    }
};

/// What an entry is, and how its payload is written.
enum class Form : std::uint8_t {
    Removal = 1,  ///< of the key
    Clearing,     ///< of all before it
    Boolean,
    Integer,
    Real,
    Date,
    String,
    Data,
    Archive,  ///< a keyed archive: arrays, dictionaries and objects
};
constexpr Form kLastForm = Form::Archive;

[[nodiscard]] constexpr bool holdsValue(Form form) noexcept {
    return form >= Form::Boolean && form <= kLastForm;
}

/// A time of day in 1/256 seconds since 1970.
struct Stamp {
    std::uint32_t seconds = 0;
    std::uint8_t fraction = 0;
    [[nodiscard]] static Stamp at(std::chrono::system_clock::time_point time) noexcept;
    [[nodiscard]] double sinceEpoch() const noexcept { return seconds + fraction / 256.0; }
};

struct SegmentHeader {
    static constexpr std::uint64_t kMagic = 0x0131'4745'5358'4B00;  // "\0KXSEG1\1"
    std::uint64_t magic = kMagic;
    std::uint64_t number = 0;
    std::uint64_t salt = 0;
    std::uint64_t check = 0;
    [[nodiscard]] std::uint64_t expectedCheck() const noexcept;
};
static_assert(sizeof(SegmentHeader) == 32);

/// Stands before key and payload.
struct EntryHeader {
    std::uint32_t check = 0;
    std::uint32_t payloadSize = 0;
    std::uint32_t seconds = 0;
    std::uint8_t fraction = 0;
    Form form{};
    std::uint16_t keySize = 0;
    std::uint64_t payloadHash = 0;

    /// Over all fields but itself, the key, and the very place of the entry: bytes that were copied elsewhere
    /// are no entry.
    [[nodiscard]] std::uint32_t expectedCheck(std::uint64_t keyHash, std::uint64_t salt,
                                              std::uint32_t offset) const noexcept;
    [[nodiscard]] std::uint64_t entrySize() const noexcept {
        return sizeof(EntryHeader) + std::uint64_t{keySize} + payloadSize;
    }
};
static_assert(sizeof(EntryHeader) == 24);

/// An entry without its key and payload: what the index keeps, and what a sealed segment ends with.
struct Record {
    std::uint64_t keyHash = 0;
    std::uint32_t offset = 0;
    std::uint32_t payloadSize = 0;
    Stamp stamp;
    Form form{};
    std::uint16_t keySize = 0;

    [[nodiscard]] std::uint64_t entrySize() const noexcept {
        return sizeof(EntryHeader) + std::uint64_t{keySize} + payloadSize;
    }
    [[nodiscard]] std::uint64_t end() const noexcept { return offset + entrySize(); }
};

/// The last bytes of a sealed segment, behind its records.
struct Footer {
    static constexpr std::uint64_t kMagic = 0x0131'5844'4E58'4B00;  // "\0KXNDX1\1"
    std::uint64_t magic = kMagic;
    std::uint32_t count = 0;
    std::uint32_t entriesEnd = 0;
    std::uint64_t check = 0;
    [[nodiscard]] std::uint64_t expectedCheck(std::uint64_t salt,
                                              std::span<const std::byte> records) const noexcept;
};
static_assert(sizeof(Footer) == 24);

constexpr std::uint32_t kLastSegment = 0xFFFF'0000;
constexpr std::uint32_t kLateSegment = 0xFF00'0000;  // no log comes that far
constexpr std::size_t kRecordSize = 24;
constexpr std::size_t kLongestKey = 0xFFFF;
constexpr std::uint64_t kLargestValue = std::uint64_t{1} << 30;
constexpr std::uint64_t kSmallestSegment = 256 << 10;
constexpr std::uint64_t kLargestSegment = 64 << 20;

void writeRecord(const Record& record, std::byte* into) noexcept;
[[nodiscard]] Record readRecord(const std::byte* from) noexcept;

template <class T>
[[nodiscard]] T readStruct(const std::byte* from) noexcept {
    T value;
    std::memcpy(static_cast<void*>(&value), from, sizeof(T));
    return value;
}

}  // namespace kx::disk
