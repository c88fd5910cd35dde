// SPDX-License-Identifier: MIT

#include <algorithm>
#include <bit>

#include <KXFoundation/Platform/Foundation/CacheTable.h>

namespace kx {

namespace {

constexpr unsigned kAddressBits = 48;
constexpr std::uint64_t kTag = ~std::uint64_t{0} << kAddressBits;
constexpr std::int64_t kLine = 64;

/// Of the hash's bits that choose neither the group nor the shard.
std::uint64_t tagOf(std::uint64_t hash) noexcept {
    return (hash << 8) & kTag;
}

std::uint64_t wordOf(const CacheEntry* entry) noexcept {
    return tagOf(entry->hash) | reinterpret_cast<std::uintptr_t>(entry);
}

CacheEntry* entryIn(std::uint64_t word) noexcept {
    return reinterpret_cast<CacheEntry*>(word & ~kTag);
}

}  // namespace

CacheTable::CacheTable(std::size_t count)
    : mask_(std::bit_ceil((count + kSlots - 2) / (kSlots - 1)) - 1),
      groups_(std::make_unique<Group[]>(mask_ + 1)) {}

CacheEntry* CacheTable::find(std::uint64_t hash, std::string_view key) const noexcept {
    const std::uint64_t tag = tagOf(hash);
    const Group* group = &home(hash);
    for (std::size_t i = 0; i <= mask_; ++i, group = &after(*group)) {
        unsigned alike = 0;
        for (unsigned slot = 0; slot < kSlots; ++slot) {
            const std::uint64_t word = group->slots[slot].load(std::memory_order_relaxed);
            alike |= unsigned{(word & kTag) == tag} << slot;
        }
        for (; alike != 0; alike &= alike - 1) {
            const auto slot = static_cast<unsigned>(std::countr_zero(alike));
            CacheEntry* const entry = entryIn(group->slots[slot].load(std::memory_order_acquire));
            if (!entry) continue;
            const std::int64_t payload = firstPayload_.load(std::memory_order_relaxed) +
                                         group->payloads[slot].load(std::memory_order_relaxed);
            prefetchToChange(reinterpret_cast<const void*>(payload * kLine));
            __builtin_prefetch(reinterpret_cast<const char*>(entry + 1) + key.size());  // to the key's end
            if (entry->key() == key) return entry;
        }
        if (group->passed.load(std::memory_order_acquire) == 0) break;
    }
    return nullptr;
}

void CacheTable::put(CacheEntry* entry, const Place& place) noexcept {
    const auto payload = reinterpret_cast<std::intptr_t>(entry->value.sharedPayload()) / kLine;
    if (firstPayload_.load(std::memory_order_relaxed) == 0)
        firstPayload_.store(payload, std::memory_order_relaxed);
    const std::int64_t lines = payload - firstPayload_.load(std::memory_order_relaxed);
    place.group.payloads[place.slot].store(static_cast<std::int32_t>(lines), std::memory_order_relaxed);
    place.group.slots[place.slot].store(wordOf(entry), std::memory_order_release);
}

void CacheTable::insert(CacheEntry* entry) noexcept {
    for (Group* group = &home(entry->hash);; group = &after(*group)) {
        const auto slot = std::ranges::find_if(
            group->slots, [](const Slot& s) { return s.load(std::memory_order_relaxed) == 0; });
        if (slot != group->slots.end())
            return put(entry, {*group, static_cast<std::size_t>(slot - group->slots.begin())});
        group->passed.store(group->passed.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
}

void CacheTable::replace(const CacheEntry* former, CacheEntry* entry) noexcept {
    put(entry, placeOf(former));
}

void CacheTable::erase(const CacheEntry* entry) noexcept {
    const Place place = placeOf(entry);
    place.group.slots[place.slot].store(0, std::memory_order_release);
    for (Group* group = &home(entry->hash); group != &place.group; group = &after(*group))
        group->passed.store(group->passed.load(std::memory_order_relaxed) - 1, std::memory_order_release);
}

CacheTable::Place CacheTable::placeOf(const CacheEntry* entry) const noexcept {
    const std::uint64_t word = wordOf(entry);
    for (Group* group = &home(entry->hash);; group = &after(*group)) {
        for (std::size_t slot = 0; slot < kSlots; ++slot) {
            if (group->slots[slot].load(std::memory_order_relaxed) == word) return {*group, slot};
        }
    }
}

}  // namespace kx
