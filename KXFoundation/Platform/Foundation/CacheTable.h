// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include <KXFoundation/Platform/Foundation/CacheEntry.h>
#include <KXFoundation/Platform/Runtime/Epoch.h>
#include <KXFoundation/Platform/Runtime/Prefetch.h>

namespace kx {

/// The hash table of a shard, of a fixed size: many threads look up without a lock while one at a time
/// changes it. Private to Foundation.
///
/// Slots come in groups that fill a line of the processor's cache. A slot holds sixteen bits of the hash
/// beside the entry's address, so that a look-up touches one line and the entries it is for, a miss no entry
/// at all. An entry that finds its group full goes to the next one with room, and each full group counts
/// those that passed it: a look-up goes on only as long as some did. Entries never move, so it cannot miss
/// one that stays.
class alignas(64) CacheTable final : public Retirable {
  public:
    /// With room for `count` entries or up to twice as many.
    explicit CacheTable(std::size_t count);

    [[nodiscard]] std::size_t room() const noexcept { return (mask_ + 1) * (kSlots - 1); }

    /// The entry of the key; the caller is inside a FencedEpochReading or alone.
    [[nodiscard]] CacheEntry* find(std::uint64_t hash, std::string_view key) const noexcept;

    /// Where a table's groups lie, to be kept by who must not touch the table.
    struct Location {
        std::atomic<const void*> groups{nullptr};
        std::atomic<std::size_t> mask{0};
    };
    void tell(Location& location) const noexcept {
        location.groups.store(groups_.get(), std::memory_order_relaxed);
        location.mask.store(mask_, std::memory_order_relaxed);
    }
    /// Where the group of the hash lies, or lay until just now: to fetch, not to read.
    [[nodiscard]] static const void* addressOf(const Location& location, std::uint64_t hash) noexcept {
        const auto first = reinterpret_cast<std::uintptr_t>(location.groups.load(std::memory_order_relaxed));
        const std::size_t group = hash & location.mask.load(std::memory_order_relaxed);
        return reinterpret_cast<const void*>(first + group * sizeof(Group));
    }

    // Changes: one thread at a time.
    /// Adds an entry whose key has none, where there is room.
    void insert(CacheEntry* entry) noexcept;
    /// Puts the entry in the place of one with the same key; a look-up finds the one or the other.
    void replace(const CacheEntry* former, CacheEntry* entry) noexcept;
    void erase(const CacheEntry* entry) noexcept;
    /// For the processor: what a change under this hash touches will be needed soon.
    void prefetch(std::uint64_t hash) const noexcept { prefetchToChange(&home(hash)); }

  private:
    static constexpr std::size_t kSlots = 5;
    /// The tag in the upper 16 bits, the address of the entry in the lower 48; 0 is free.
    using Slot = std::atomic<std::uint64_t>;
    struct alignas(64) Group {
        std::array<Slot, kSlots> slots{};
        /// Where the payloads of the values lie, in lines of the processor's cache from the first: a hit
        /// fetches its value's, whose count it is to change, and the entry at once, not one after the other.
        /// What is fetched may be wrong.
        std::array<std::atomic<std::int32_t>, kSlots> payloads{};
        std::atomic<std::uint32_t> passed{0};
    };
    struct Place {
        Group& group;
        std::size_t slot;
    };

    [[nodiscard]] Group& home(std::uint64_t hash) const noexcept { return groups_[hash & mask_]; }
    [[nodiscard]] Group& after(const Group& group) const noexcept {
        return groups_[static_cast<std::size_t>(&group - groups_.get() + 1) & mask_];
    }
    void put(CacheEntry* entry, const Place& place) noexcept;
    [[nodiscard]] Place placeOf(const CacheEntry* entry) const noexcept;

    const std::size_t mask_;
    const std::unique_ptr<Group[]> groups_;
    std::atomic<std::int64_t> firstPayload_{0};
};

}  // namespace kx
