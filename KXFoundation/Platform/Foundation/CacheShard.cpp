#include <algorithm>
#include <cstring>
#include <new>

#include <KXFoundation/Platform/Foundation/CacheShard.h>

namespace kx {

CacheEntry* CacheEntry::make(std::string_view key, Value value, const Facts& facts) {
    void* memory = ::operator new(sizeof(CacheEntry) + key.size());
    auto* entry = new (memory) CacheEntry(std::move(value), static_cast<std::uint32_t>(key.size()), facts);
    std::memcpy(reinterpret_cast<char*>(entry + 1), key.data(), key.size());
    return entry;
}

void CacheEntry::destroy(CacheEntry* entry) noexcept {
    entry->~CacheEntry();
    ::operator delete(entry);
}

namespace {

class RetiredEntries final : public Retirable {
  public:
    explicit RetiredEntries(CacheEntry* first) noexcept : first_(first) {}
    ~RetiredEntries() override {
        while (first_) {
            // The values' memory is cold by now; it arrives while others are destroyed.
            if (const CacheEntry* const soon = first_->older; soon && soon->older)
                __builtin_prefetch(soon->older->value.sharedPayload(), 1);
            CacheEntry::destroy(std::exchange(first_, first_->older));
        }
    }

  private:
    CacheEntry* first_;
};

}  // namespace

DiscardedEntries::~DiscardedEntries() {
    if (first_) retire(new RetiredEntries(first_));
    for (Retirable* table : tables_) retire(table);
}

void DiscardedEntries::append(DiscardedEntries other) {
    tables_.insert(tables_.end(), other.tables_.begin(), other.tables_.end());
    other.tables_.clear();
    if (!other.first_) return;
    other.last_->older = first_;
    if (!first_) last_ = other.last_;
    first_ = std::exchange(other.first_, nullptr);
    count_ += other.count_;
    cost_ += other.cost_;
}

bool DiscardedEntries::isMuch(std::uint64_t count, std::uint64_t cost) const noexcept {
    constexpr std::uint64_t kMost = 512;
    constexpr std::uint64_t kPart = 32;
    return count_ + tables_.size() >= std::clamp<std::uint64_t>(count / kPart, 1, kMost) ||
           cost_ > cost / kPart;
}

/// A chain, and where the payload of its first value lies: a hit fetches that, whose count it is to change,
/// and the entry at once, not one after the other.
struct CacheShard::Bucket {
    std::atomic<CacheEntry*> head{nullptr};
    std::atomic<const void*> payload{nullptr};  // is only fetched, so it may be out of date

    void add(CacheEntry* entry, std::memory_order order) noexcept {
        entry->next.store(head.load(std::memory_order_relaxed), order);
        payload.store(entry->value.sharedPayload(), std::memory_order_relaxed);
        head.store(entry, std::memory_order_release);
    }
};

struct CacheShard::Buckets final : Retirable {
    explicit Buckets(std::size_t count) : mask(count - 1), all(std::make_unique<Bucket[]>(count)) {}
    const std::size_t mask;
    const std::unique_ptr<Bucket[]> all;
};

CacheShard::CacheShard() : buckets_(new Buckets(16)) {}

CacheShard::~CacheShard() {
    while (oldest_) CacheEntry::destroy(std::exchange(oldest_, oldest_->newer));
    delete buckets_.load(std::memory_order_relaxed);
}

CacheShard::Bucket& CacheShard::bucket(std::uint64_t hash) const noexcept {
    const Buckets& buckets = *buckets_.load(std::memory_order_acquire);
    return buckets.all[hash & buckets.mask];
}

/// A chain whose entries move under the reader leads it astray, so a miss counts only if nothing moved.
CacheEntry* CacheShard::find(std::uint64_t hash, std::string_view key) const noexcept {
    for (;;) {
        const std::uint64_t before = version();
        const Bucket& chain = bucket(hash);
        __builtin_prefetch(chain.payload.load(std::memory_order_relaxed), 1);
        for (CacheEntry* entry = chain.head.load(std::memory_order_acquire); entry;
             entry = entry->next.load(std::memory_order_acquire)) {
            __builtin_prefetch(entry->key().data() + 16);  // it lies in a line of its own, needed next
            if (entry->hash == hash && entry->key() == key) return entry;
        }
        if (before % 2 == 0 && version() == before) return nullptr;
    }
}

void CacheShard::insert(CacheEntry* entry) {
    if (count_ > buckets_.load(std::memory_order_relaxed)->mask / 2) grow();
    bucket(entry->hash).add(entry, std::memory_order_relaxed);
    linkNewest(entry);
    ++count_;
    cost_ += entry->cost;
}

void CacheShard::linkNewest(CacheEntry* entry) {
    entry->newer = nullptr;
    entry->older = newest_;
    if (newest_) {
        newest_->newer = entry;
    } else {
        oldest_ = entry;
        oldestTime_.store(entry->time.count(), std::memory_order_relaxed);
    }
    newest_ = entry;
}

void CacheShard::unlink(CacheEntry* entry) {
    std::atomic<CacheEntry*>* link = &bucket(entry->hash).head;
    while (link->load(std::memory_order_relaxed) != entry)
        link = &link->load(std::memory_order_relaxed)->next;
    link->store(entry->next.load(std::memory_order_relaxed), std::memory_order_release);

    if (hand_ == entry) hand_ = entry->newer;
    (entry->newer ? entry->newer->older : newest_) = entry->older;
    (entry->older ? entry->older->newer : oldest_) = entry->newer;
    oldestTime_.store(oldest_ ? oldest_->time.count() : kNever.count(), std::memory_order_relaxed);
    --count_;
    cost_ -= entry->cost;
}

CacheEntry* CacheShard::evict(const CacheEntry* keep) {
    if (!oldest_ || (oldest_ == keep && newest_ == keep)) return nullptr;
    std::size_t spared = 0;
    for (CacheEntry* entry = hand_ ? hand_ : oldest_;; entry = entry->newer ? entry->newer : oldest_) {
        // Readers may set marks as fast as the hand takes them; twice round is enough.
        if (entry == keep || (entry->visited.load(std::memory_order_relaxed) && ++spared < 2 * count_)) {
            entry->visited.store(false, std::memory_order_relaxed);
            continue;
        }
        hand_ = entry;
        unlink(entry);
        prefetchNextVictim();
        return entry;
    }
}

/// The next eviction, some sets from now, finds in the cache what unlinking will touch.
void CacheShard::prefetchNextVictim() const {
    if (!hand_) return;
    __builtin_prefetch(&bucket(hand_->hash), 1);
    __builtin_prefetch(hand_->newer, 1);
}

void CacheShard::grow() {
    Buckets* const former = buckets_.load(std::memory_order_relaxed);
    auto* const larger = new Buckets((former->mask + 1) * 2);
    beginMoving();
    for (CacheEntry* entry = oldest_; entry; entry = entry->newer)
        larger->all[entry->hash & larger->mask].add(entry, std::memory_order_release);
    buckets_.store(larger, std::memory_order_release);
    endMoving();
    discarded_.add(former);
}

DiscardedEntries CacheShard::takeIfMuch() {
    return discarded_.isMuch(count_, cost_) ? std::move(discarded_) : DiscardedEntries();
}

void CacheShard::lock() const {
    constexpr int kTries = 200;
    for (int i = 0; i < kTries; ++i) {
        if (mutex_.tryLock()) return;
    }
    mutex_.lock();
}

}  // namespace kx
