#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/CacheEntry.h>
#include <KXFoundation/Platform/Foundation/CacheTable.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

/// Unlinked entries on their way out: a chain, destroyed in one go once no reader can hold any of them.
class DiscardedEntries {
  public:
    DiscardedEntries() = default;
    DiscardedEntries(DiscardedEntries&& other) noexcept { take(other); }
    DiscardedEntries& operator=(DiscardedEntries&& other) noexcept {
        take(other);
        return *this;
    }
    /// Retires what it holds. Hold no lock: destructors of values run.
    ~DiscardedEntries();

    void add(CacheEntry* entry) noexcept {
        entry->older = first_;
        if (!first_) last_ = entry;
        first_ = entry;
        ++count_;
        cost_ += entry->cost;
    }
    void add(Retirable* table) { tables_.push_back(table); }
    void append(DiscardedEntries other);
    [[nodiscard]] bool isEmpty() const noexcept { return count_ == 0 && tables_.empty(); }
    /// Whether it is more than a small part of a cache with so many entries of that cost.
    [[nodiscard]] bool isMuch(std::uint64_t count, std::uint64_t cost) const noexcept;

  private:
    void take(DiscardedEntries& other) noexcept {
        std::swap(first_, other.first_);
        std::swap(last_, other.last_);
        std::swap(count_, other.count_);
        std::swap(cost_, other.cost_);
        tables_.swap(other.tables_);
    }
    std::vector<Retirable*> tables_;  // former ones, seldom any
    CacheEntry* first_ = nullptr;
    CacheEntry* last_ = nullptr;
    std::size_t count_ = 0;
    std::uint64_t cost_ = 0;
};

/// A part of an NSCache: a hash table that is read without a lock, and the order in which its entries leave.
/// Private to Foundation.
///
/// Invariants under the mutex: the table and the list from oldest to newest hold the same entries; the hand
/// points into the list or nowhere.
///
/// The order is SIEVE (Zhang and others, NSDI 2024): a hand walks from the oldest entry to the newest; it
/// spares a visited one and takes its mark, and evicts the first unvisited one. A hit only sets the mark,
/// where a list ordered by last use would be rewritten by every reader.
class alignas(64) CacheShard {
  public:
    CacheShard();
    ~CacheShard();
    CacheShard(const CacheShard&) = delete;
    CacheShard& operator=(const CacheShard&) = delete;

    /// The entry of the key, valid as long as the caller's EpochReading; no lock.
    [[nodiscard]] CacheEntry* find(std::uint64_t hash, std::string_view key) const noexcept {
        return table_.load(std::memory_order_acquire)->find(hash, key);
    }
    /// When its oldest entry was set; no lock.
    [[nodiscard]] std::chrono::nanoseconds oldestTime() const noexcept {
        return std::chrono::nanoseconds(oldestTime_.load(std::memory_order_relaxed));
    }
    static constexpr auto kNever = std::chrono::nanoseconds::max();

    [[nodiscard]] Mutex& mutex() const noexcept KX_THREAD_ANNOTATION(lock_returned(mutex_)) { return mutex_; }
    /// Locks the mutex. It is held for less time than it takes to put a thread to sleep and wake it, so this
    /// asks some times before it sleeps.
    void lock() const KX_ACQUIRE(mutex_);

    [[nodiscard]] CacheEntry* findLocked(std::uint64_t hash, std::string_view key) const KX_REQUIRES(mutex_) {
        return find(hash, key);
    }
    /// Adds an entry whose key has none.
    void insert(CacheEntry* entry) KX_REQUIRES(mutex_);
    /// Puts the entry in the place of one with the same key; readers find the one or the other.
    void replace(CacheEntry* former, CacheEntry* entry) KX_REQUIRES(mutex_);
    /// Takes the entry out of table and order; readers may still hold it.
    void unlink(CacheEntry* entry) KX_REQUIRES(mutex_);
    /// Unlinks the entry that is to leave next, never `keep`; nullptr if there is no other.
    [[nodiscard]] CacheEntry* evict(const CacheEntry* keep) KX_REQUIRES(mutex_);
    /// The oldest entry if it was set before `time`.
    [[nodiscard]] CacheEntry* oldestBefore(std::chrono::nanoseconds time) const KX_REQUIRES(mutex_) {
        return oldest_ && oldest_->time < time ? oldest_ : nullptr;
    }
    [[nodiscard]] std::size_t count() const KX_REQUIRES(mutex_) { return count_; }

    [[nodiscard]] CacheEntry* oldest() const KX_REQUIRES(mutex_) { return oldest_; }
    /// Hands the entry over; it is found here too until forgetMoved().
    void move(CacheEntry* entry, CacheShard& to) KX_REQUIRES(mutex_) KX_REQUIRES(to.mutex_);
    void forgetMoved() KX_REQUIRES(mutex_) { rebuild(count_ + 1); }

    /// Puts an unlinked entry aside, so that several share the price of retire().
    void discard(CacheEntry* entry) KX_REQUIRES(mutex_) { discarded_.add(entry); }
    /// What was put aside, once it is more than a small part of the shard.
    [[nodiscard]] DiscardedEntries takeIfMuch() KX_REQUIRES(mutex_);
    [[nodiscard]] DiscardedEntries takeDiscarded() KX_REQUIRES(mutex_) { return std::move(discarded_); }

    std::uint64_t evictions KX_GUARDED_BY(mutex_) = 0;

  private:
    [[nodiscard]] CacheTable& table() const noexcept KX_REQUIRES(mutex_) {
        return *table_.load(std::memory_order_relaxed);
    }
    void rebuild(std::size_t room) KX_REQUIRES(mutex_);
    void linkNewest(CacheEntry* entry) KX_REQUIRES(mutex_);
    void unlinkFromOrder(CacheEntry* entry) KX_REQUIRES(mutex_);
    void prefetchNextVictim() const KX_REQUIRES(mutex_);

    std::atomic<CacheTable*> table_;
    std::atomic<std::int64_t> oldestTime_{kNever.count()};

    mutable Mutex mutex_;
    CacheEntry* oldest_ KX_GUARDED_BY(mutex_) = nullptr;
    CacheEntry* newest_ KX_GUARDED_BY(mutex_) = nullptr;
    CacheEntry* hand_ KX_GUARDED_BY(mutex_) = nullptr;
    std::size_t count_ KX_GUARDED_BY(mutex_) = 0;
    std::uint64_t cost_ KX_GUARDED_BY(mutex_) = 0;
    DiscardedEntries discarded_ KX_GUARDED_BY(mutex_);
};

}  // namespace kx
