// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include <KXFoundation/Platform/Foundation/CacheEntry.h>

namespace kx {

/// Unlinked entries on their way out: a chain, destroyed in one go once no reader can hold any of them.
/// Private to Foundation.
class DiscardedEntries {
  public:
    DiscardedEntries() = default;
    DiscardedEntries(DiscardedEntries&& other) noexcept : first_(std::exchange(other.first_, nullptr)) {}
    DiscardedEntries& operator=(DiscardedEntries&& other) noexcept {
        std::swap(first_, other.first_);
        return *this;
    }
    /// Retires what it holds. Hold no lock: destructors of values run.
    ~DiscardedEntries() {
        if (first_) retireAll();
    }

    void add(CacheEntry* entry) noexcept {
        entry->older = first_;
        first_ = entry;
    }

  private:
    void retireAll() noexcept;
    CacheEntry* first_ = nullptr;
};

}  // namespace kx
