#include <algorithm>
#include <bit>
#include <limits>

#include <KXFoundation/Platform/Foundation/CacheTable.h>

namespace kx {

namespace {

constexpr unsigned kAddressBits = 48;
constexpr std::uint64_t kTag = ~std::uint64_t{0} << kAddressBits;
constexpr std::intptr_t kLine = 64;

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

std::int32_t linesToPayload(const CacheEntry* entry) noexcept {
    const auto payload = reinterpret_cast<std::intptr_t>(entry->value.sharedPayload());
    const std::intptr_t lines = payload / kLine - reinterpret_cast<std::intptr_t>(entry) / kLine;
    const auto stored = static_cast<std::int32_t>(lines);
    return payload != 0 && stored == lines ? stored : 0;
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
            const std::intptr_t payload = group->payloads[slot].load(std::memory_order_relaxed) * kLine;
            __builtin_prefetch(reinterpret_cast<const char*>(entry) + payload, 1);
            __builtin_prefetch(reinterpret_cast<const char*>(entry + 1) + key.size());
            if (entry && entry->key() == key) return entry;
        }
        if (group->passed.load(std::memory_order_acquire) == 0) break;
    }
    return nullptr;
}

void CacheTable::Place::put(CacheEntry* entry) const noexcept {
    group.payloads[slot].store(linesToPayload(entry), std::memory_order_relaxed);
    group.slots[slot].store(wordOf(entry), std::memory_order_release);
}

void CacheTable::insert(CacheEntry* entry) noexcept {
    ++count_;
    for (Group* group = &home(entry->hash);; group = &after(*group)) {
        const auto slot = std::ranges::find_if(
            group->slots, [](const Slot& s) { return s.load(std::memory_order_relaxed) == 0; });
        if (slot != group->slots.end())
            return Place{*group, static_cast<std::size_t>(slot - group->slots.begin())}.put(entry);
        group->passed.store(group->passed.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
}

void CacheTable::replace(const CacheEntry* former, CacheEntry* entry) noexcept {
    placeOf(former).put(entry);
}

void CacheTable::erase(const CacheEntry* entry) noexcept {
    --count_;
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
