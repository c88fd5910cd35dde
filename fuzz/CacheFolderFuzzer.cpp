// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <span>
#include <string>
#include <string_view>

#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Platform/Runtime/ContentHash.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

// The folder of a disk cache as its format page tells it (docs/formats/disk-cache.md). The input is one byte
// of choices, 16 bytes of the header page (head and tail), the size of the first segment in two bytes, its
// bytes, and those of the second segment.

namespace {

using namespace std::literals;

// Choices.
constexpr std::uint8_t kMendChecks = 1;    // those of headers, entries and the table
constexpr std::uint8_t kMendPayloads = 2;  // the hashes of the payloads
constexpr std::uint8_t kThisBoot = 4;      // the header page is of this start of the machine: its head counts

constexpr std::size_t kSegmentHeader = 32;
constexpr std::size_t kEntryHeader = 24;
constexpr std::size_t kFooter = 24;
constexpr std::size_t kRecord = 24;

template <class T>
T number(const std::string& bytes, std::size_t at) {
    T value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

template <class T>
void put(std::string& bytes, std::size_t at, T value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

std::uint64_t mixed(std::uint64_t a, std::uint64_t b) {
    return (a ^ b) * 0x9E3779B185EBCA87ULL;
}

std::uint64_t keyHash(const std::string& bytes, std::size_t at, std::size_t size) {
    return kx::hashOfKey(std::string_view(bytes).substr(at, size));
}

std::uint64_t contentHash(const std::string& bytes, std::size_t at, std::size_t size) {
    return kx::hashOfContents(std::as_bytes(std::span(bytes)).subspan(at, size));
}

std::uint64_t saltOf(const std::string& segment) {
    return number<std::uint64_t>(segment, 16);
}

/// The entries that follow one another.
template <class Mend>
void forEachEntry(std::string& segment, Mend mend) {
    for (std::size_t at = kSegmentHeader; segment.size() - at >= kEntryHeader;) {
        const std::size_t keySize = number<std::uint16_t>(segment, at + 14);
        const std::size_t payloadSize = number<std::uint32_t>(segment, at + 4);
        if (keySize + payloadSize > segment.size() - at - kEntryHeader) return;
        mend(at, keySize, payloadSize);
        at += kEntryHeader + keySize + payloadSize;
    }
}

void mendPayloads(std::string& segment) {
    forEachEntry(segment, [&](std::size_t at, std::size_t keySize, std::size_t payloadSize) {
        put(segment, at + 16, contentHash(segment, at + kEntryHeader + keySize, payloadSize));
    });
}

void mendTable(std::string& segment) {
    const std::size_t footer = segment.size() - kFooter;
    const std::uint64_t count = number<std::uint32_t>(segment, footer + 8);
    if (segment.compare(footer, 8, "\0KXNDX1\1"sv) != 0 || count * kRecord > footer - kSegmentHeader) return;
    const std::uint64_t table = contentHash(segment, footer - count * kRecord, count * kRecord);
    const std::uint64_t ends = count << 32 | number<std::uint32_t>(segment, footer + 12);
    put(segment, footer + 16, mixed(mixed(table, ends), saltOf(segment)));
}

/// Without this nearly no input would come further than to the first check.
void mendChecks(std::string& segment, std::uint64_t segmentNumber) {
    std::ranges::copy("\0KXSEG1\1"sv, segment.begin());
    put(segment, 8, segmentNumber);
    put(segment, 24, keyHash(segment, 0, 24));
    forEachEntry(segment, [&](std::size_t at, std::size_t keySize, std::size_t) {
        const std::uint64_t fields = keyHash(segment, at + 4, kEntryHeader - 4);
        const std::uint64_t key = keyHash(segment, at + kEntryHeader, keySize);
        put(segment, at, static_cast<std::uint32_t>(mixed(mixed(fields, key), saltOf(segment) + at) >> 32));
    });
    mendTable(segment);
}

void mend(std::string& segment, std::uint64_t segmentNumber, std::uint8_t choices) {
    if (segment.size() < kSegmentHeader + kFooter) return;
    if ((choices & kMendPayloads) != 0) mendPayloads(segment);
    if ((choices & kMendChecks) != 0) mendChecks(segment, segmentNumber);
}

std::uint64_t thisBoot() {
    std::string identifier(36, '\0');
    std::ifstream("/proc/sys/kernel/random/boot_id").read(identifier.data(), 36);
    return contentHash(identifier, 0, identifier.size());
}

void require(bool holds) {
    if (!holds) std::abort();
}

/// Whatever the folder held, the store goes on: what is set now is there, also for the next one to open it.
void use(const std::string& folder) {
    const auto open = [&] { return kx::KXDiskCache::initWithPath(folder); };
    const auto cache = open();
    for (const char* key : {"a", "b", "c", ""}) static_cast<void>(cache->objectForKey(key));
    cache->setObject("value", "new");
    cache->setObject(12, "a");
    cache->removeObjectForKey("b");
    for (const auto& store : {cache, open()}) {
        require(store->objectForKey("new") == kx::Value("value"));
        require(store->objectForKey("a") == kx::Value(12));
        require(!store->containsObjectForKey("b"));
    }
    open()->setObject("theirs", "other");  // as another process does
    require(cache->objectForKey("other") == kx::Value("theirs"));
    cache->setCountLimit(1);
    require(cache->totalCount() <= 1);
    cache->removeAllObjects();
    require(open()->totalCount() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kFixed = 1 + 16 + 2;
    if (size < kFixed) return 0;
    const std::string input(reinterpret_cast<const char*>(data), size);
    std::string header(4096, '\0');
    std::ranges::copy("\0KXSHD1\1"sv, header.begin());
    std::ranges::copy(input.substr(1, 16), header.begin() + 8);
    if ((data[0] & kThisBoot) != 0) put(header, 24, thisBoot());
    const std::size_t firstSize = std::min<std::size_t>(number<std::uint16_t>(input, 17), size - kFixed);
    std::array segments{input.substr(kFixed, firstSize), input.substr(kFixed + firstSize)};
    for (std::uint64_t i = 0; i < segments.size(); ++i) mend(segments[i], i + 1, data[0]);
    const kx::testing::TemporaryDirectory folder;
    folder.write("header", header);
    folder.write("segment-00000001", segments[0]);
    folder.write("segment-00000002", segments[1]);
    use(folder.path());
    kx::drainQueues();
    return 0;
}
