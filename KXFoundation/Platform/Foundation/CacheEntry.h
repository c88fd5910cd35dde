// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// One value of an NSCache with its key behind it, in one allocation. Private to Foundation.
///
/// What a reader without a lock touches does not change after the entry is linked, but for the visited bit;
/// the rest belongs to the shard's lock.
struct CacheEntry {
    struct Facts {
        std::uint64_t hash;
        std::uint64_t cost;
        std::uint8_t lane;              ///< of the thread that set it, see CacheShard
        std::chrono::nanoseconds time;  ///< by the cache's clock, when the value was set
    };
    static constexpr std::size_t kLongestKey = 0xFFFF'FFFF;
    [[nodiscard]] static CacheEntry* make(std::string_view key, Value value, const Facts& facts);
    static void destroy(CacheEntry* entry) noexcept;

    [[nodiscard]] std::string_view key() const noexcept {
        return {reinterpret_cast<const char*>(this + 1), keySize};
    }
    /// A bit that is set already is not written again, so that readers of one value share its line.
    void visit() noexcept {
        if (!visited.load(std::memory_order_relaxed)) visited.store(true, std::memory_order_relaxed);
    }

    const std::chrono::nanoseconds time;
    const std::uint64_t cost;
    CacheEntry* older = nullptr;  // the order of their coming; after unlinking: the next one to destroy
    CacheEntry* newer = nullptr;
    const std::uint64_t hash;

    // What a hit looks at, beside the key that follows.
    const Value value;
    const std::uint32_t keySize;
    std::atomic<bool> visited{false};
    const std::uint8_t lane;

  private:
    CacheEntry(Value v, std::uint32_t size, const Facts& facts) noexcept
        : time(facts.time),
          cost(facts.cost),
          hash(facts.hash),
          value(std::move(v)),
          keySize(size),
          lane(facts.lane) {}
    ~CacheEntry() = default;
};
static_assert(sizeof(CacheEntry) == 64);  // a line of the processor's cache

}  // namespace kx
