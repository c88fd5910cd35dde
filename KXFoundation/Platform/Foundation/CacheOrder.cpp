// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/CacheOrder.h>

namespace kx {

void CacheOrder::add(CacheEntry* entry) noexcept {
    entry->newer = nullptr;
    entry->older = newest_;
    (newest_ ? newest_->newer : oldest_) = entry;
    newest_ = entry;
}

void CacheOrder::remove(CacheEntry* entry) noexcept {
    if (hand_ == entry) hand_ = entry->newer;
    (entry->newer ? entry->newer->older : newest_) = entry->older;
    (entry->older ? entry->older->newer : oldest_) = entry->newer;
}

CacheEntry* CacheOrder::advance(const CacheEntry* keep) noexcept {
    if (!oldest_ || (oldest_ == keep && newest_ == keep)) return nullptr;
    const CacheEntry* start = nullptr;
    int rounds = 0;
    for (CacheEntry* entry = hand_ ? hand_ : oldest_;; entry = entry->newer ? entry->newer : oldest_) {
        if (entry == start) ++rounds;
        if (!start) start = entry;
        // Readers may set marks as fast as the hand takes them; twice round is enough.
        if (entry != keep && (!entry->visited.load(std::memory_order_relaxed) || rounds > 1))
            return hand_ = entry;
        entry->visited.store(false, std::memory_order_relaxed);
    }
}

}  // namespace kx
