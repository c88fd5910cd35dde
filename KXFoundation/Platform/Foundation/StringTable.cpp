// SPDX-License-Identifier: MIT

#include <bit>
#include <utility>

#include <KXFoundation/Platform/Foundation/StringTable.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {

std::string lineFor(const std::string& path, const StringTableFaults& faults) {
    std::string line = path + ":" + std::to_string(faults.firstLine) + ": " + faults.firstReason;
    if (faults.count == 1) return line + "; the entry is left out";
    return line + "; " + std::to_string(faults.count) + " entries of the file are left out";
}

}  // namespace

/// Entries go straight into the slots: a list of them beside would double the fresh pages that loading
/// touches, and those cost more than the reading.
StringTable::StringTable(std::string contents)
    : text_(contents.size() > kLargestFile ? std::string() : stringTableText(std::move(contents))) {
    constexpr std::size_t kUsualEntry = 64;  // bytes, of which a slot and a half is made
    slots_.resize(std::bit_floor(text_.size() / kUsualEntry * 3 / 2 + 4));
    // An entry waits while the next one is read and its slot comes into the cache.
    StringTableEntry waiting;
    std::uint64_t hashed = 0;
    faults_ = readStringTable(text_, [&](const StringTableEntry& entry) {
        const std::uint64_t next = hash(entry.key);
        __builtin_prefetch(&slots_[next & (slots_.size() - 1)], 1);
        if (waiting.key.data()) insert(waiting, hashed);
        waiting = entry;
        hashed = next;
    });
    if (waiting.key.data()) insert(waiting, hashed);
}

Result<std::unique_ptr<const StringTable>> StringTable::load(FileSystem& files, const std::string& path) {
    auto contents = readFile(files, path, kLargestFile);
    if (!contents) return std::move(contents).error();
    auto table = std::make_unique<const StringTable>(*std::move(contents));
    if (table->faults().count > 0) log(LogLevel::Warning, lineFor(path, table->faults()));
    return table;
}

/// Seeded by the place of the text, which no author of a hostile file knows: he cannot make keys collide.
std::uint64_t StringTable::hash(std::string_view key) const noexcept {
    return XXH3_64bits_withSeed(key.data(), key.size(), reinterpret_cast<std::uintptr_t>(text_.data()));
}

/// The slot that holds the key, else the free one where it would go.
std::size_t StringTable::slotOf(std::string_view key, std::uint64_t hashed) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = hashed & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.textOffset == 0) return i;
        if (slot.tag != hashed >> 52) continue;
        if (key == std::string_view(text_.data() + slot.keyOffset, slot.keyLength)) return i;
    }
}

void StringTable::insert(const StringTableEntry& entry, std::uint64_t hashed) {
    constexpr std::uint64_t kReach = (1U << 26) - 1;
    const auto offset = [this](std::string_view part) {
        return static_cast<std::uint64_t>(part.data() - text_.data());
    };
    if (3 * (size_ + 1) > 2 * slots_.size()) grow();
    Slot& slot = slots_[slotOf(entry.key, hashed)];
    if (slot.textOffset == 0) ++size_;
    slot = {.keyOffset = offset(entry.key) & kReach,
            .keyLength = entry.key.size() & kReach,
            .tag = static_cast<std::uint16_t>(hashed >> 52) & 0xFFFU,
            .textOffset = offset(entry.text) & kReach,
            .textLength = entry.text.size() & kReach};
}

void StringTable::grow() {
    const auto old = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
    for (const Slot& slot : old) {
        if (slot.textOffset == 0) continue;
        const std::string_view key(text_.data() + slot.keyOffset, slot.keyLength);
        slots_[slotOf(key, hash(key))] = slot;
    }
}

std::optional<std::string_view> StringTable::lookUp(std::string_view key) const noexcept {
    const Slot& slot = slots_[slotOf(key, hash(key))];
    if (slot.textOffset == 0) return std::nullopt;
    return std::string_view(text_.data() + slot.textOffset, slot.textLength);
}

}  // namespace kx
