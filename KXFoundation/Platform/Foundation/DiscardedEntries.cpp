// SPDX-License-Identifier: MIT

#include <new>

#include <KXFoundation/Platform/Foundation/DiscardedEntries.h>
#include <KXFoundation/Platform/Runtime/Epoch.h>
#include <KXFoundation/Platform/Runtime/Prefetch.h>

namespace kx {

namespace {

/// The values' memory is cold by now; it arrives while others are destroyed.
void destroyAll(CacheEntry* first) noexcept {
    constexpr int kAhead = 8;
    const CacheEntry* ahead = first;
    const auto fetchNext = [&] {
        if (!ahead) return;
        prefetchToChange(ahead->value.sharedPayload());
        ahead = ahead->older;
    };
    for (int i = 0; i < kAhead; ++i) fetchNext();
    while (first) {
        fetchNext();
        CacheEntry::destroy(std::exchange(first, first->older));
    }
}

class RetiredEntries final : public Retirable {
  public:
    explicit RetiredEntries(CacheEntry* first) noexcept : first_(first) {}
    ~RetiredEntries() override { destroyAll(first_); }

  private:
    CacheEntry* const first_;
};

}  // namespace

void DiscardedEntries::retireAll() noexcept {
    if (isNobodyReadingFenced()) return destroyAll(first_);
    // Without memory for this little the entries stay for good: no reader may lose them.
    if (auto* const entries = new (std::nothrow) RetiredEntries(first_)) retireFenced(entries);
}

}  // namespace kx
