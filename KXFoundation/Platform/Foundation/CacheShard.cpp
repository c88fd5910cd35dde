// SPDX-License-Identifier: MIT

#include <algorithm>
#include <utility>

#include <KXFoundation/Platform/Foundation/CacheShard.h>

namespace kx {

CacheShard::CacheShard() : table_(new CacheTable(8)) {
    table_.load(std::memory_order_relaxed)->tell(tableLocation_);
}

CacheShard::~CacheShard() {
    for (Lane& lane : lanes_) {
        for (CacheEntry* entry = lane.order.oldest(); entry;)
            CacheEntry::destroy(std::exchange(entry, entry->newer));
    }
    delete table_.load(std::memory_order_relaxed);
}

std::chrono::nanoseconds CacheShard::oldestTime() const noexcept {
    std::int64_t oldest = kNever.count();
    for (const Times& times : times_) oldest = std::min(oldest, times.oldest.load(std::memory_order_relaxed));
    return std::chrono::nanoseconds(oldest);
}

Retirable* CacheShard::insert(CacheEntry* entry) {
    Retirable* const former = table().room() <= count_ ? rebuild(table().room() * 2) : nullptr;
    table().insert(entry);
    link(entry);
    return former;
}

void CacheShard::replace(CacheEntry* former, CacheEntry* entry) {
    table().replace(former, entry);
    unlinkFromOrder(former);
    link(entry);
}

void CacheShard::unlink(CacheEntry* entry) {
    table().erase(entry);
    unlinkFromOrder(entry);
}

Retirable* CacheShard::move(CacheEntry* entry, CacheShard& to) {
    unlinkFromOrder(entry);
    return to.insert(entry);
}

void CacheShard::link(CacheEntry* entry) {
    lanes_[entry->lane].order.add(entry);
    ++count_;
    noteTimes(entry->lane);
}

void CacheShard::unlinkFromOrder(CacheEntry* entry) {
    lanes_[entry->lane].order.remove(entry);
    --count_;
    noteTimes(entry->lane);
}

/// Most entries are as old as their neighbours, by the coarse clock: a time that stands already is not
/// written, so that all lanes keep their copy of the line.
void CacheShard::noteTimes(std::size_t lane) {
    const auto note = [](std::atomic<std::int64_t>& noted, const CacheEntry* entry) {
        const std::int64_t time = entry ? entry->time.count() : kNever.count();
        if (noted.load(std::memory_order_relaxed) != time) noted.store(time, std::memory_order_relaxed);
    };
    note(times_[lane].oldest, lanes_[lane].order.oldest());
    note(times_[lane].atHand, lanes_[lane].order.hand());
}

CacheEntry* CacheShard::oldestBefore(std::chrono::nanoseconds time) const {
    for (const Lane& lane : lanes_) {
        CacheEntry* const oldest = lane.order.oldest();
        if (oldest && oldest->time < time) return oldest;
    }
    return nullptr;
}

/// The one whose entry at the hand is the oldest; that of the newest entry unless another's is older by an
/// eighth.
std::size_t CacheShard::laneToEvictFrom(const CacheEntry* newest) const {
    const auto timeAtHand = [&](std::size_t lane) {
        return times_[lane].atHand.load(std::memory_order_relaxed);
    };
    std::size_t chosen = newest ? newest->lane : 0;
    std::int64_t before = timeAtHand(chosen);
    if (newest && before != kNever.count()) before -= (newest->time.count() - before) / 8;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        if (timeAtHand(lane) < before) before = timeAtHand(chosen = lane);
    }
    return chosen;
}

CacheEntry* CacheShard::evict(const CacheEntry* keep, const CacheEntry* newest) {
    CacheEntry* victim = lanes_[laneToEvictFrom(newest)].order.advance(keep);
    for (std::size_t lane = 0; !victim && lane < kLanes; ++lane) victim = lanes_[lane].order.advance(keep);
    if (!victim) return nullptr;
    unlink(victim);
    ++evictions_;
    prefetchNextVictim(victim->lane);
    return victim;
}

CacheEntry* CacheShard::evictBefore(std::chrono::nanoseconds time) {
    CacheEntry* const entry = oldestBefore(time);
    if (!entry) return nullptr;
    unlink(entry);
    ++evictions_;
    return entry;
}

/// The next eviction, some sets from now, finds in the cache what unlinking will touch.
void CacheShard::prefetchNextVictim(std::size_t lane) const {
    const CacheEntry* const hand = lanes_[lane].order.hand();
    if (!hand) return;
    table().prefetch(hand->hash);
    prefetchToChange(hand->newer);
    if (hand->newer) prefetchToChange(&hand->newer->visited);
}

/// Readers of the former table go on in it: it stays as it is.
Retirable* CacheShard::rebuild(std::size_t room) {
    auto* const table = new CacheTable(room);
    for (const Lane& lane : lanes_) {
        for (CacheEntry* entry = lane.order.oldest(); entry; entry = entry->newer) table->insert(entry);
    }
    table->tell(tableLocation_);
    return table_.exchange(table, std::memory_order_acq_rel);
}

void CacheShard::discard(CacheEntry* entry, std::size_t lane) {
    lanes_[lane].discarded.add(entry);
    lanes_[lane].discardedCost += entry->cost;
    ++lanes_[lane].discardedCount;
}

DiscardedEntries CacheShard::takeDiscarded(std::size_t lane) {
    lanes_[lane].discardedCount = 0;
    lanes_[lane].discardedCost = 0;
    return std::move(lanes_[lane].discarded);
}

DiscardedEntries CacheShard::takeIfMuch(std::size_t lane, std::uint64_t cost) {
    constexpr std::size_t kMost = 32;
    constexpr std::size_t kPart = 32;
    const bool isMuch = lanes_[lane].discardedCount >= std::clamp<std::size_t>(count_ / kPart, 1, kMost) ||
                        lanes_[lane].discardedCost > cost / kPart;
    return isMuch ? takeDiscarded(lane) : DiscardedEntries();
}

}  // namespace kx
