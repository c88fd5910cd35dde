#include <algorithm>
#include <cstring>
#include <new>

#include <KXFoundation/Platform/Foundation/CacheShard.h>

namespace kx {

CacheEntry* CacheEntry::make(std::string_view key, Value value, const Facts& facts) {
    void* memory = ::operator new(sizeof(CacheEntry) + key.size());
    auto* entry = new (memory) CacheEntry(std::move(value), key.size(), facts);
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
        while (first_) CacheEntry::destroy(std::exchange(first_, first_->older));
    }

  private:
    CacheEntry* first_;
};

}  // namespace

DiscardedEntries::~DiscardedEntries() {
    if (first_) retire(new RetiredEntries(first_));
    for (Retirable* table : tables_) retire(table);
}

struct CacheShard::Buckets final : Retirable {
    explicit Buckets(std::size_t count)
        : mask(count - 1), heads(std::make_unique<std::atomic<CacheEntry*>[]>(count)) {}
    const std::size_t mask;
    const std::unique_ptr<std::atomic<CacheEntry*>[]> heads;
};

CacheShard::CacheShard() : buckets_(new Buckets(16)) {}

CacheShard::~CacheShard() {
    while (oldest_) CacheEntry::destroy(std::exchange(oldest_, oldest_->newer));
    delete buckets_.load(std::memory_order_relaxed);
}

std::atomic<CacheEntry*>& CacheShard::bucket(std::uint64_t hash) const noexcept {
    const Buckets& buckets = *buckets_.load(std::memory_order_acquire);
    return buckets.heads[hash & buckets.mask];
}

/// A chain whose entries move under the reader leads it astray, so a miss counts only if nothing moved.
CacheEntry* CacheShard::find(std::uint64_t hash, std::string_view key) const noexcept {
    for (;;) {
        const std::uint64_t before = version();
        for (CacheEntry* entry = bucket(hash).load(std::memory_order_acquire); entry;
             entry = entry->next.load(std::memory_order_acquire)) {
            __builtin_prefetch(entry->key().data() + 16);  // it lies in a line of its own, needed next
            if (entry->hash == hash && entry->key() == key) return entry;
        }
        if (before % 2 == 0 && version() == before) return nullptr;
    }
}

void CacheShard::insert(CacheEntry* entry) {
    if (count_ > buckets_.load(std::memory_order_relaxed)->mask / 2) grow();
    std::atomic<CacheEntry*>& head = bucket(entry->hash);
    entry->next.store(head.load(std::memory_order_relaxed), std::memory_order_relaxed);
    head.store(entry, std::memory_order_release);
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
    std::atomic<CacheEntry*>* link = &bucket(entry->hash);
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
        return entry;
    }
}

void CacheShard::grow() {
    Buckets* const former = buckets_.load(std::memory_order_relaxed);
    auto* const larger = new Buckets((former->mask + 1) * 4);
    beginMoving();
    for (CacheEntry* entry = oldest_; entry; entry = entry->newer) {
        auto& head = larger->heads[entry->hash & larger->mask];
        entry->next.store(head.load(std::memory_order_relaxed), std::memory_order_release);
        head.store(entry, std::memory_order_release);
    }
    buckets_.store(larger, std::memory_order_release);
    endMoving();
    discarded_.add(former);
}

DiscardedEntries CacheShard::takeIfMuch() {
    constexpr std::size_t kMost = 64;
    constexpr std::size_t kPart = 16;
    const bool isMuch = discarded_.count() >= std::clamp<std::size_t>(count_ / kPart, 1, kMost) ||
                        discarded_.cost() > cost_ / kPart;
    return isMuch ? std::move(discarded_) : DiscardedEntries();
}

}  // namespace kx
