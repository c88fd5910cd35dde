#include <algorithm>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSCache.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace kx {

namespace {

std::uint64_t hashOf(std::string_view key) noexcept {
    return XXH3_64bits(key.data(), key.size());
}

std::size_t numberOfThisThread() noexcept {
    static constinit std::atomic<std::size_t> last{0};
    static thread_local const std::size_t number = last.fetch_add(1, std::memory_order_relaxed);
    return number;
}

}  // namespace

/// The shard that holds a hash, locked: the cache may be split between the choice and the lock.
class NSCache::LockedShard {
  public:
    LockedShard(const NSCache& cache, std::uint64_t hash) KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
        for (;;) {
            shard_ = &cache.shardFor(hash);
            shard_->lock();
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

NSCache::Uses& NSCache::uses() const noexcept {
    return uses_[numberOfThisThread() % kStripes];
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

/// For a caller that is inside an EpochReading.
const CacheEntry* NSCache::find(std::string_view key) const {
    const std::uint64_t hash = hashOf(key);
    for (;;) {
        CacheShard& shard = shardFor(hash);
        CacheEntry* const entry = shard.find(hash, key);
        if (entry) return isExpired(*entry) ? nullptr : entry;
        if (&shard == &shardFor(hash)) return nullptr;  // else it was split meanwhile
    }
}

Value NSCache::objectForKey(std::string_view key) const {
    const EpochReading reading;
    const CacheEntry* const entry = find(key);
    if (!entry) {
        uses().misses.fetch_add(1, std::memory_order_relaxed);
        return {};
    }
    uses().hits.fetch_add(1, std::memory_order_relaxed);
    const_cast<CacheEntry*>(entry)->visit();
    return entry->value;
}

bool NSCache::containsObjectForKey(std::string_view key) const {
    const EpochReading reading;
    return find(key) != nullptr;
}

bool NSCache::isOver(const Change& change) const noexcept {
    const std::uint64_t countLimit = countLimit_.load(std::memory_order_relaxed);
    const std::uint64_t costLimit = costLimit_.load(std::memory_order_relaxed);
    return (countLimit != 0 && totals_.count.load(std::memory_order_relaxed) + change.count > countLimit) ||
           (costLimit != 0 && totals_.cost.load(std::memory_order_relaxed) + change.cost > costLimit);
}

void NSCache::apply(const Change& change) const noexcept {
    if (change.count != 0) totals_.count.fetch_add(change.count, std::memory_order_relaxed);
    if (change.cost != 0) totals_.cost.fetch_add(change.cost, std::memory_order_relaxed);
}

/// Evicts from the shard until the limits hold with the change, and applies it. Where one entry takes the
/// place of another the totals stay as they are, and threads that fill a full cache write nothing in common.
DiscardedEntries NSCache::makeRoom(CacheShard& shard, const CacheEntry* keep, Change change) {
    CacheEntry* victim = nullptr;
    do {
        while (isOver(change) && (victim = shard.evict(keep))) {
            change.without(*victim);
            ++shard.evictions;
            shard.discard(victim);
        }
        apply(std::exchange(change, Change()));
    } while (isOver() && shard.count() > 1);
    return shard.takeIfMuch();
}

/// What shards have put aside waits here for more of its kind: where threads read, retire() is one system
/// call for all of it.
void NSCache::discard(DiscardedEntries few) const {
    if (few.isEmpty()) return;
    DiscardedEntries many;  // goes after the lock
    const MutexLock lock(discardedMutex_);
    discarded_.append(std::move(few));
    if (discarded_.isMuch(totals_.count, totals_.cost)) many = std::move(discarded_);
}

void NSCache::setObject(Value object, std::string_view key, std::uint64_t cost) {
    if (object.isNull() || key.size() > CacheEntry::kLongestKey) return;
    const std::uint64_t costLimit = costLimit_.load(std::memory_order_relaxed);
    if (costLimit != 0 && cost > costLimit) return removeObjectForKey(key);
    const std::uint64_t hash = hashOf(key);
    CacheEntry* const entry = CacheEntry::make(key, std::move(object), {hash, cost, clock_->now()});
    bool isLarge = false;
    DiscardedEntries discarded;
    {
        const LockedShard locked(*this, hash);
        CacheShard& shard = *locked;
        const auto replace = [&]() KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
            CacheEntry* const former = shard.findLocked(hash, key);
            Change change{1, cost};
            if (former) {
                shard.replace(former, entry);
                change = Change(0, cost - former->cost);
                shard.discard(former);
            } else {
                shard.insert(entry);
            }
            discarded = makeRoom(shard, entry, change);
            isLarge = shard.count() > kSplitAt;
        };
        replace();
    }
    discard(std::move(discarded));
    if (isLarge && shardMask_.load(std::memory_order_relaxed) == 0) split();
    if (isOver()) holdLimits(entry);
    if (ageLimit_.load(std::memory_order_relaxed) != 0) removeExpired();
}

void NSCache::removeObjectForKey(std::string_view key) {
    const std::uint64_t hash = hashOf(key);
    DiscardedEntries removed;
    const LockedShard locked(*this, hash);
    const auto remove = [&](CacheShard& shard) KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
        CacheEntry* const entry = shard.findLocked(hash, key);
        if (!entry) return;
        shard.unlink(entry);
        apply(Change().without(*entry));
        removed = shard.takeDiscarded();
        removed.add(entry);
    };
    remove(*locked);
}

void NSCache::removeAllObjects() {
    for (CacheShard& shard : shards_) {
        DiscardedEntries removed;
        const MutexLock lock(shard.mutex());
        removed = shard.takeDiscarded();
        while (CacheEntry* entry = shard.oldest()) {
            shard.unlink(entry);
            apply(Change().without(*entry));
            removed.add(entry);
        }
    }
    DiscardedEntries waiting;
    const MutexLock lock(discardedMutex_);
    waiting = std::move(discarded_);
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
        MutexLock lock(shard.mutex());
        CacheEntry* const victim = shard.evict(keep);
        if (!victim) continue;
        found = true;
        apply(Change().without(*victim));
        ++shard.evictions;
        shard.discard(victim);
        evicted = shard.takeIfMuch();
        lock.unlock();
        discard(std::move(evicted));
    }
    return found;
}

void NSCache::removeExpired() const {
    const auto expired = expiredBefore();
    for (CacheShard& shard : shards_) {
        if (shard.oldestTime() >= expired) continue;
        DiscardedEntries removed;
        const MutexLock lock(shard.mutex());
        while (CacheEntry* entry = shard.oldestBefore(expired)) {
            shard.unlink(entry);
            ++shard.evictions;
            apply(Change().without(*entry));
            removed.add(entry);
        }
    }
}

/// Spreads the entries of the first shard over all of them, each shard in the order of their coming.
void NSCache::split() KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
    std::array<DiscardedEntries, kShards> tables;
    for (CacheShard& shard : shards_) shard.mutex().lock();
    CacheShard& first = shards_[0];
    if (shardMask_.load(std::memory_order_relaxed) == 0) {
        CacheEntry* newer = nullptr;
        for (CacheEntry* entry = first.oldest(); entry; entry = newer) {
            newer = entry->newer;
            CacheShard& target = shards_[(entry->hash >> 60) & (kShards - 1)];
            if (&target != &first) first.move(entry, target);
        }
        shardMask_.store(kShards - 1, std::memory_order_release);
        first.forgetMoved();  // a reader that misses one now sees that the mask has changed
    }
    for (std::size_t i = 0; i < kShards; ++i) tables[i] = shards_[i].takeDiscarded();
    for (CacheShard& shard : shards_) shard.mutex().unlock();
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
        const MutexLock lock(shard.mutex());
        const auto kept =
            static_cast<std::size_t>(std::clamp(share, 0.0, 1.0) * static_cast<double>(shard.count()));
        while (shard.count() > kept) {
            CacheEntry* const entry = shard.evict(nullptr);
            ++shard.evictions;
            apply(Change().without(*entry));
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
        const MutexLock lock(shard.mutex());
        statistics.evictions += shard.evictions;
    }
    statistics.count = totals_.count.load(std::memory_order_relaxed);
    statistics.cost = totals_.cost.load(std::memory_order_relaxed);
    return statistics;
}

}  // namespace kx
