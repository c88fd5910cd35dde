// SPDX-License-Identifier: MIT

#include <algorithm>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSCache.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace kx {

namespace {

std::uint64_t hashOf(std::string_view key) noexcept {
    return XXH3_64bits(key.data(), key.size());
}

std::uint8_t laneOfThisThread() {
    return EpochReading::threadNumber() % CacheShard::kLanes;
}

}  // namespace

/// The shard that holds a hash, locked: the cache may be split between the choice and the lock.
class NSCache::LockedShard {
  public:
    LockedShard(const NSCache& cache, std::uint64_t hash) KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
        for (;;) {
            shard_ = &cache.shardFor(hash);
            shard_->mutex().lock();
            if (shard_ == &cache.shardFor(hash)) return;
            shard_->mutex().unlock();
        }
    }
    ~LockedShard() KX_THREAD_ANNOTATION(no_thread_safety_analysis) { shard_->mutex().unlock(); }
    LockedShard(const LockedShard&) = delete;
    LockedShard& operator=(const LockedShard&) = delete;
    CacheShard& operator*() const noexcept { return *shard_; }

  private:
    CacheShard* shard_;
};

bool NSCache::init() {
    clock_ = Clock::slot().shared();
    return Super::init();
}

NSCache::NSCache() = default;
NSCache::~NSCache() = default;

CacheShard& NSCache::shardFor(std::uint64_t hash) const noexcept {
    return shards_[(hash >> 60) & shardMask_.load(std::memory_order_acquire)];
}

/// Each of the first threads has counters of its own, all others share the last.
void NSCache::countUse(std::atomic<std::uint64_t> Uses::*counter) const {
    const std::size_t thread = EpochReading::threadNumber();
    auto& uses = uses_[std::min(thread, kStripes - 1)].*counter;
    if (thread < kStripes - 1) {
        uses.store(uses.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    } else {
        uses.fetch_add(1, std::memory_order_relaxed);
    }
}

/// Entries that were set before this are too old.
std::chrono::nanoseconds NSCache::expiredBefore() const noexcept {
    const double age = ageLimit_.load(std::memory_order_relaxed);
    if (age == 0) return std::chrono::nanoseconds::min();
    const auto now = clock_->now();
    const double nanoseconds = age * 1e9;
    if (nanoseconds >= static_cast<double>(now.count())) return std::chrono::nanoseconds::min();
    return now - std::chrono::nanoseconds(static_cast<std::int64_t>(nanoseconds));
}

bool NSCache::isExpired(const CacheEntry& entry) const noexcept {
    return ageLimit_.load(std::memory_order_relaxed) != 0 && entry.time < expiredBefore();
}

/// For a caller that is inside a FencedEpochReading.
const CacheEntry* NSCache::find(std::uint64_t hash, std::string_view key) const {
    for (;;) {
        CacheShard& shard = shardFor(hash);
        CacheEntry* const entry = shard.find(hash, key);
        if (entry) return isExpired(*entry) ? nullptr : entry;
        if (&shard == &shardFor(hash)) return nullptr;  // else it was split meanwhile
    }
}

Value NSCache::objectForKey(std::string_view key) const {
    const std::uint64_t hash = hashOf(key);
    shardFor(hash).prefetchToFind(hash);  // on its way while the fence waits for what is under way
    const FencedEpochReading reading;
    const CacheEntry* const entry = find(hash, key);
    countUse(entry ? &Uses::hits : &Uses::misses);
    if (!entry) return {};
    const_cast<CacheEntry*>(entry)->visit();
    return entry->value;
}

bool NSCache::containsObjectForKey(std::string_view key) const {
    const FencedEpochReading reading;
    return find(hashOf(key), key) != nullptr;
}

bool NSCache::isOver(std::uint64_t countChange, std::uint64_t costChange) const noexcept {
    const std::uint64_t countLimit = countLimit_.load(std::memory_order_relaxed);
    const std::uint64_t costLimit = costLimit_.load(std::memory_order_relaxed);
    return (countLimit != 0 && totals_.count.load(std::memory_order_relaxed) + countChange > countLimit) ||
           (costLimit != 0 && totals_.cost.load(std::memory_order_relaxed) + costChange > costLimit);
}

/// About.
std::uint64_t NSCache::costOfShard() const noexcept {
    return totals_.cost.load(std::memory_order_relaxed) / (shardMask_.load(std::memory_order_relaxed) + 1);
}

void NSCache::change(std::uint64_t count, std::uint64_t cost) const noexcept {
    if (count != 0) totals_.count.fetch_add(count, std::memory_order_relaxed);
    if (cost != 0) totals_.cost.fetch_add(cost, std::memory_order_relaxed);
}

/// Evicts from the shard until the limits hold with the change, and makes it. Where one entry takes the place
/// of another the totals stay as they are, and threads that fill a full cache write nothing in common.
void NSCache::makeRoom(CacheShard& shard, const CacheEntry* entry, std::uint64_t countChange,
                       std::uint64_t costChange) {
    do {
        CacheEntry* victim = nullptr;
        while (isOver(countChange, costChange) && (victim = shard.evictFor(entry))) {
            --countChange;
            costChange -= victim->cost;
            shard.discard(victim, entry->lane);
        }
        change(std::exchange(countChange, 0), std::exchange(costChange, 0));
    } while (isOver() && shard.count() > 1);
}

void NSCache::setObject(Value object, std::string_view key, std::uint64_t cost) {
    if (object.isNull() || key.size() > CacheEntry::kLongestKey) return;
    const std::uint64_t costLimit = costLimit_.load(std::memory_order_relaxed);
    if (costLimit != 0 && cost > costLimit) return removeObjectForKey(key);
    if (ageLimit_.load(std::memory_order_relaxed) != 0)
        removeExpired();  // before it costs others their place
    const std::uint64_t hash = hashOf(key);
    const std::uint8_t lane = laneOfThisThread();
    shardFor(hash).prefetchToSet(hash, lane);
    CacheEntry* const entry =
        CacheEntry::make(key, std::move(object), {hash, cost, lane, clock_->coarseNow()});
    bool isLarge = false;
    Retirable* formerTable = nullptr;
    {
        DiscardedEntries discarded;
        const LockedShard locked(*this, hash);
        CacheShard& shard = *locked;
        const auto replace = [&]() KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
            CacheEntry* const former = shard.findLocked(hash, key);
            if (former) {
                shard.replace(former, entry);
                shard.discard(former, lane);
            } else {
                formerTable = shard.insert(entry);
            }
            makeRoom(shard, entry, former ? 0 : 1, former ? cost - former->cost : cost);
            discarded = shard.takeIfMuch(lane, costOfShard());
            isLarge = shard.count() > kSplitAt;
        };
        replace();
    }
    if (formerTable) retireFenced(formerTable);
    if (isLarge && shardMask_.load(std::memory_order_relaxed) == 0) split();
    if (isOver()) holdLimits(entry);
}

void NSCache::removeObjectForKey(std::string_view key) {
    const std::uint64_t hash = hashOf(key);
    DiscardedEntries removed;
    const LockedShard locked(*this, hash);
    const auto remove = [&](CacheShard& shard) KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
        CacheEntry* const entry = shard.findLocked(hash, key);
        if (!entry) return;
        shard.unlink(entry);
        take(*entry);
        removed.add(entry);
    };
    remove(*locked);
}

void NSCache::removeAllObjects() {
    for (CacheShard& shard : shards_) {
        std::array<DiscardedEntries, CacheShard::kLanes> removed;
        const ShortLocking lock(shard.mutex());
        while (CacheEntry* entry = shard.oldestBefore(CacheShard::kNever)) {
            shard.unlink(entry);
            take(*entry);
            shard.discard(entry, entry->lane);
        }
        for (std::size_t lane = 0; lane < removed.size(); ++lane) removed[lane] = shard.takeDiscarded(lane);
    }
}

/// Evicts from all shards alike until the limits hold.
void NSCache::holdLimits(const CacheEntry* keep) {
    while (isOver() && evictOneOfEach(keep)) {
    }
}

bool NSCache::evictOneOfEach(const CacheEntry* keep) {
    bool found = false;
    for (CacheShard& shard : shards_) {
        if (!isOver()) return true;
        DiscardedEntries evicted;
        const ShortLocking lock(shard.mutex());
        CacheEntry* const victim = shard.evict(keep);
        if (!victim) continue;
        found = true;
        take(*victim);
        shard.discard(victim, victim->lane);
        evicted = shard.takeIfMuch(victim->lane, costOfShard());
    }
    return found;
}

void NSCache::removeExpired() const {
    const auto expired = expiredBefore();
    for (CacheShard& shard : shards_) {
        if (shard.oldestTime() >= expired) continue;
        DiscardedEntries removed;
        const ShortLocking lock(shard.mutex());
        while (CacheEntry* entry = shard.evictBefore(expired)) {
            take(*entry);
            removed.add(entry);
        }
    }
}

/// Spreads the entries of the first shard over all of them, each shard in the order of their coming.
void NSCache::split() KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
    std::vector<Retirable*> tables;
    const auto retireLater = [&](Retirable* table) {
        if (table) tables.push_back(table);
    };
    for (CacheShard& shard : shards_) shard.mutex().lock();
    CacheShard& first = shards_[0];
    if (shardMask_.load(std::memory_order_relaxed) == 0) {
        for (std::size_t lane = 0; lane < CacheShard::kLanes; ++lane) {
            CacheEntry* newer = nullptr;
            for (CacheEntry* entry = first.oldest(lane); entry; entry = newer) {
                newer = entry->newer;
                CacheShard& target = shards_[(entry->hash >> 60) & (kShards - 1)];
                if (&target != &first) retireLater(first.move(entry, target));
            }
        }
        shardMask_.store(kShards - 1, std::memory_order_release);
        retireLater(first.forgetMoved());  // a reader that misses one now sees that the mask has changed
    }
    for (CacheShard& shard : shards_) shard.mutex().unlock();
    for (Retirable* table : tables) retireFenced(table);
}

void NSCache::setCountLimit(std::uint64_t limit) {
    countLimit_ = limit;
    holdLimits();
}

void NSCache::setTotalCostLimit(std::uint64_t limit) {
    costLimit_ = limit;
    holdLimits();
}

void NSCache::setAgeLimit(double seconds) {
    ageLimit_ = seconds > 0 ? seconds : 0;
    removeExpired();
}

void NSCache::keepShare(double share) {
    for (CacheShard& shard : shards_) {
        DiscardedEntries evicted;
        const ShortLocking lock(shard.mutex());
        const auto kept =
            static_cast<std::size_t>(std::clamp(share, 0.0, 1.0) * static_cast<double>(shard.count()));
        while (shard.count() > kept) {
            CacheEntry* const entry = shard.evict(nullptr);
            take(*entry);
            evicted.add(entry);
        }
    }
}

NSCache::Statistics NSCache::statistics() const {
    removeExpired();
    Statistics statistics;
    for (const Uses& uses : uses_) {
        statistics.hits += uses.hits.load(std::memory_order_relaxed);
        statistics.misses += uses.misses.load(std::memory_order_relaxed);
    }
    for (CacheShard& shard : shards_) {
        const ShortLocking lock(shard.mutex());
        statistics.evictions += shard.evictions();
    }
    statistics.count = totals_.count.load(std::memory_order_relaxed);
    statistics.cost = totals_.cost.load(std::memory_order_relaxed);
    return statistics;
}

}  // namespace kx
