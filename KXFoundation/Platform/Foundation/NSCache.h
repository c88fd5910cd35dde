// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/CacheShard.h>
#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Prefetch.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// Values by key in memory, with limits that hold after every set. Values are shared, never copied. Any
/// thread; a hit takes no lock and writes nothing that threads share but the value's own count and a mark in
/// its entry.
///
/// When a limit is reached, a hand walks on from the oldest value towards the newest, then round again; it
/// spares what was asked for since it last came by, and the first other value leaves. Every operation takes
/// constant time, amortised.
class KX_EXPORT NSCache : public Subclass<NSCache, NSObject> {
  public:
    bool init();
    ~NSCache() override;

    /// Null if there is none.
    [[nodiscard]] Value objectForKey(std::string_view key) const;
    /// Whether there is one; counts as no use of it.
    [[nodiscard]] bool containsObjectForKey(std::string_view key) const;
    /// Replaces what stood under the key. A null value changes nothing, and neither does a key of 4 GiB; a
    /// value that costs more than the cost limit is not kept, and neither is the former one.
    void setObject(Value object, std::string_view key, std::uint64_t cost = 0);
    void removeObjectForKey(std::string_view key);
    void removeAllObjects();

    // Limits; 0 is none. A lower one holds when the setter returns. Costs are added modulo 2^64: those of all
    // values together stay below that.
    [[nodiscard]] std::uint64_t countLimit() const noexcept { return countLimit_; }
    void setCountLimit(std::uint64_t limit);
    [[nodiscard]] std::uint64_t totalCostLimit() const noexcept { return costLimit_; }
    void setTotalCostLimit(std::uint64_t limit);
    /// How long a value is answered after it was set. Below zero or not a number counts as 0.
    [[nodiscard]] double ageLimit() const noexcept { return ageLimit_; }
    void setAgeLimit(double seconds);

    struct Statistics {
        std::uint64_t hits = 0;
        std::uint64_t misses = 0;
        std::uint64_t evictions = 0;  ///< entries that left for a limit or under memory pressure
        std::uint64_t count = 0;
        std::uint64_t cost = 0;
    };
    /// Values that have outlived the age limit do not count.
    [[nodiscard]] Statistics statistics() const;

    /// Evicts until at most this share (0 to 1) of the present entries is left, those first that would be the
    /// next to leave.
    void keepShare(double share);

  protected:
    NSCache();

  private:
    static constexpr std::size_t kShards = 16;
    static constexpr std::size_t kSplitAt = 4096;
    static constexpr std::size_t kStripes = 16;
    struct alignas(kApart) Uses {
        std::atomic<std::uint64_t> hits{0}, misses{0};
    };
    struct alignas(kApart) Totals {
        std::atomic<std::uint64_t> count{0}, cost{0};
    };
    class LockedShard;

    [[nodiscard]] const CacheEntry* find(std::uint64_t hash, std::string_view key) const;
    [[nodiscard]] CacheShard& shardFor(std::uint64_t hash) const noexcept;
    void countUse(std::atomic<std::uint64_t> Uses::*counter) const;
    // Changes of count and cost are modulo 2^64.
    [[nodiscard]] bool isOver(std::uint64_t countChange = 0, std::uint64_t costChange = 0) const noexcept;
    [[nodiscard]] std::chrono::nanoseconds expiredBefore() const noexcept;
    [[nodiscard]] bool isExpired(const CacheEntry& entry) const noexcept;
    [[nodiscard]] std::uint64_t costOfShard() const noexcept;
    void change(std::uint64_t count, std::uint64_t cost) const noexcept;
    void take(const CacheEntry& entry) const noexcept { change(~std::uint64_t{0}, -entry.cost); }
    void makeRoom(CacheShard& shard, const CacheEntry* entry, std::uint64_t countChange,
                  std::uint64_t costChange) KX_REQUIRES(shard.mutex());
    void holdLimits(const CacheEntry* keep = nullptr);
    bool evictOneOfEach(const CacheEntry* keep);
    void removeExpired() const;
    void split();

    std::shared_ptr<Clock> clock_;
    std::atomic<std::uint64_t> countLimit_{0};
    std::atomic<std::uint64_t> costLimit_{0};
    std::atomic<double> ageLimit_{0};
    /// Small caches live in the first shard, where their order is one; a large one is split over all.
    std::atomic<std::size_t> shardMask_{0};
    mutable Totals totals_;
    mutable std::array<Uses, kStripes> uses_;
    mutable std::array<CacheShard, kShards> shards_;
};

}  // namespace kx
