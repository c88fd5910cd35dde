// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include <KXFoundation/Platform/Foundation/CacheEntry.h>

namespace kx {

/// The order in which entries leave. Private to Foundation; not thread-safe.
///
/// It is SIEVE (Zhang and others, NSDI 2024): a hand walks from the oldest entry to the newest; it spares a
/// visited one and takes its mark, and the first unvisited one leaves. A hit only sets the mark, where a list
/// ordered by last use would be rewritten by every reader.
class CacheOrder {
  public:
    static constexpr auto kNever = std::chrono::nanoseconds::max();

    /// As the newest.
    void add(CacheEntry* entry) noexcept;
    void remove(CacheEntry* entry) noexcept;
    [[nodiscard]] CacheEntry* oldest() const noexcept { return oldest_; }

    /// Moves the hand to the entry that is to leave next, never `keep`; nullptr if there is no other.
    [[nodiscard]] CacheEntry* advance(const CacheEntry* keep) noexcept;
    /// Where the hand stands; nullptr if there are no entries.
    [[nodiscard]] const CacheEntry* hand() const noexcept { return hand_ ? hand_ : oldest_; }

  private:
    CacheEntry* oldest_ = nullptr;
    CacheEntry* newest_ = nullptr;
    CacheEntry* hand_ = nullptr;  // nullptr: at the oldest
};

}  // namespace kx
