// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <KXFoundation/Platform/Foundation/CacheEntry.h>
#include <KXFoundation/Platform/Foundation/CacheOrder.h>
#include <KXFoundation/Platform/Foundation/CacheTable.h>
#include <KXFoundation/Platform/Foundation/DiscardedEntries.h>
#include <KXFoundation/Platform/Runtime/Prefetch.h>
#include <KXFoundation/Platform/Runtime/ShortLock.h>

namespace kx {

/// A part of an NSCache: a hash table that is read without a lock, and the orders in which its entries leave.
/// Private to Foundation.
///
/// An entry stands in the order of its lane, which is that of the thread that set it. To make room a thread
/// evicts from its own lane unless another holds clearly older entries: threads that fill a cache work on
/// entries, values and memory of their own, and share the tables only.
///
/// Invariant under the mutex: the table and the orders hold the same entries.
class alignas(kApart) CacheShard {
  public:
    static constexpr std::size_t kLanes = 4;
    static constexpr auto kNever = CacheOrder::kNever;

    CacheShard();
    ~CacheShard();
    CacheShard(const CacheShard&) = delete;
    CacheShard& operator=(const CacheShard&) = delete;

    /// The entry of the key, valid as long as the caller's FencedEpochReading; no lock.
    [[nodiscard]] CacheEntry* find(std::uint64_t hash, std::string_view key) const noexcept {
        return table_.load(std::memory_order_acquire)->find(hash, key);
    }
    // For the processor: what will be needed soon; no lock. The table may go at any time, so this knows where
    // it lies: what is fetched may be wrong.
    void prefetchToFind(std::uint64_t hash) const noexcept {
        __builtin_prefetch(CacheTable::addressOf(tableLocation_, hash));
    }
    void prefetchToSet(std::uint64_t hash, std::size_t lane) const noexcept
        KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
        prefetchToChange(CacheTable::addressOf(tableLocation_, hash));
        prefetchToChange(&mutex_);
        __builtin_prefetch(&times_);
        prefetchToChange(&lanes_[lane]);
    }
    /// When its oldest entry was set; no lock.
    [[nodiscard]] std::chrono::nanoseconds oldestTime() const noexcept;

    [[nodiscard]] ShortLock& mutex() const noexcept KX_THREAD_ANNOTATION(lock_returned(mutex_)) {
        return mutex_;
    }

    [[nodiscard]] CacheEntry* findLocked(std::uint64_t hash, std::string_view key) const KX_REQUIRES(mutex_) {
        return find(hash, key);
    }
    /// Adds an entry whose key has none. Answers the former table where it took a larger one: to be retired
    /// without the lock.
    [[nodiscard]] Retirable* insert(CacheEntry* entry) KX_REQUIRES(mutex_);
    /// Puts the entry in the place of one with the same key; readers find the one or the other.
    void replace(CacheEntry* former, CacheEntry* entry) KX_REQUIRES(mutex_);
    /// Takes the entry out of table and order; readers may still hold it.
    void unlink(CacheEntry* entry) KX_REQUIRES(mutex_);
    /// Unlinks the entry that is to leave next, never `keep`; nullptr if there is no other.
    [[nodiscard]] CacheEntry* evict(const CacheEntry* keep) KX_REQUIRES(mutex_) {
        return evict(keep, nullptr);
    }
    /// The same for the sake of an entry that was just inserted, of its own lane rather than of others.
    [[nodiscard]] CacheEntry* evictFor(const CacheEntry* entry) KX_REQUIRES(mutex_) {
        return evict(entry, entry);
    }
    /// Unlinks an entry that was set before `time`; nullptr if there is none.
    [[nodiscard]] CacheEntry* evictBefore(std::chrono::nanoseconds time) KX_REQUIRES(mutex_);
    [[nodiscard]] std::size_t count() const KX_REQUIRES(mutex_) { return count_; }

    /// Any entry that was set before `time`, the oldest of its lane; nullptr if there is none.
    [[nodiscard]] CacheEntry* oldestBefore(std::chrono::nanoseconds time) const KX_REQUIRES(mutex_);
    /// The oldest entry of a lane.
    [[nodiscard]] CacheEntry* oldest(std::size_t lane) const KX_REQUIRES(mutex_) {
        return lanes_[lane].order.oldest();
    }
    /// Hands the entry over; it is found here too until forgetMoved(). Answers as insert() does.
    [[nodiscard]] Retirable* move(CacheEntry* entry, CacheShard& to) KX_REQUIRES(mutex_)
        KX_REQUIRES(to.mutex_);
    /// Answers the former table, to be retired without the lock.
    [[nodiscard]] Retirable* forgetMoved() KX_REQUIRES(mutex_) { return rebuild(count_ + 1); }

    /// Puts an unlinked entry aside in the lane, so that several share the price of retiring.
    void discard(CacheEntry* entry, std::size_t lane) KX_REQUIRES(mutex_);
    /// What was put aside in the lane.
    [[nodiscard]] DiscardedEntries takeDiscarded(std::size_t lane) KX_REQUIRES(mutex_);
    /// The same once it is more than a small part of a shard of that cost.
    [[nodiscard]] DiscardedEntries takeIfMuch(std::size_t lane, std::uint64_t cost) KX_REQUIRES(mutex_);

    /// How many were evicted.
    [[nodiscard]] std::uint64_t evictions() const KX_REQUIRES(mutex_) { return evictions_; }

  private:
    /// What the threads of the lane write.
    struct alignas(kApart) Lane {
        CacheOrder order;
        DiscardedEntries discarded;
        std::size_t discardedCount = 0;
        std::uint64_t discardedCost = 0;
    };
    /// What the others look at.
    struct Times {
        std::atomic<std::int64_t> oldest{kNever.count()};
        std::atomic<std::int64_t> atHand{kNever.count()};
    };

    [[nodiscard]] CacheTable& table() const noexcept KX_REQUIRES(mutex_) {
        return *table_.load(std::memory_order_relaxed);
    }
    [[nodiscard]] Retirable* rebuild(std::size_t room) KX_REQUIRES(mutex_);
    void link(CacheEntry* entry) KX_REQUIRES(mutex_);
    void unlinkFromOrder(CacheEntry* entry) KX_REQUIRES(mutex_);
    void noteTimes(std::size_t lane) KX_REQUIRES(mutex_);
    [[nodiscard]] CacheEntry* evict(const CacheEntry* keep, const CacheEntry* newest) KX_REQUIRES(mutex_);
    [[nodiscard]] std::size_t laneToEvictFrom(const CacheEntry* newest) const KX_REQUIRES(mutex_);
    void prefetchNextVictim(std::size_t lane) const KX_REQUIRES(mutex_);

    std::atomic<CacheTable*> table_;
    CacheTable::Location tableLocation_;
    alignas(kApart) mutable ShortLock mutex_;
    std::size_t count_ KX_GUARDED_BY(mutex_) = 0;
    std::uint64_t evictions_ KX_GUARDED_BY(mutex_) = 0;
    alignas(kApart) std::array<Times, kLanes> times_;
    std::array<Lane, kLanes> lanes_ KX_GUARDED_BY(mutex_);
};

}  // namespace kx
