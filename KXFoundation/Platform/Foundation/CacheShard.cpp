#include <algorithm>
#include <new>
#include <utility>

#include <KXFoundation/Platform/Foundation/CacheShard.h>

namespace kx {

namespace {

class RetiredEntries final : public Retirable {
  public:
    explicit RetiredEntries(CacheEntry* first) noexcept : first_(first) {}
    /// The values' memory is cold by now; it arrives while others are destroyed.
    ~RetiredEntries() override {
        constexpr int kAhead = 8;
        const CacheEntry* ahead = first_;
        const auto fetchNext = [&] {
            if (!ahead) return;
            __builtin_prefetch(ahead->value.sharedPayload(), 1);
            ahead = ahead->older;
        };
        for (int i = 0; i < kAhead; ++i) fetchNext();
        while (first_) {
            fetchNext();
            CacheEntry::destroy(std::exchange(first_, first_->older));
        }
    }

  private:
    CacheEntry* first_;
};

}  // namespace

DiscardedEntries::~DiscardedEntries() {
    // Without memory for this little the entries stay for good: no reader may lose them.
    if (auto* const entries = first_ ? new (std::nothrow) RetiredEntries(first_) : nullptr) retire(entries);
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

CacheShard::CacheShard() : table_(new CacheTable(8)) {}

CacheShard::~CacheShard() {
    while (oldest_) CacheEntry::destroy(std::exchange(oldest_, oldest_->newer));
    delete table_.load(std::memory_order_relaxed);
}

void CacheShard::insert(CacheEntry* entry) {
    if (table().isFull()) rebuild(table().room() * 2);
    table().insert(entry);
    linkNewest(entry);
}

void CacheShard::replace(CacheEntry* former, CacheEntry* entry) {
    table().replace(former, entry);
    unlinkFromOrder(former);
    linkNewest(entry);
}

void CacheShard::unlink(CacheEntry* entry) {
    table().erase(entry);
    unlinkFromOrder(entry);
}

void CacheShard::move(CacheEntry* entry, CacheShard& to) {
    unlinkFromOrder(entry);
    to.insert(entry);
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
    ++count_;
    cost_ += entry->cost;
}

void CacheShard::unlinkFromOrder(CacheEntry* entry) {
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
    table().prefetch(hand_);
    __builtin_prefetch(hand_->newer, 1);
    if (hand_->newer) __builtin_prefetch(&hand_->newer->visited, 1);
}

/// Readers of the former table go on in it: it stays as it is.
void CacheShard::rebuild(std::size_t room) {
    auto* const table = new CacheTable(room);
    for (CacheEntry* entry = oldest_; entry; entry = entry->newer) table->insert(entry);
    discarded_.add(table_.exchange(table, std::memory_order_acq_rel));
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
