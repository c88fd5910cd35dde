// SPDX-License-Identifier: MIT

#include <new>

#include <KXFoundation/Platform/Foundation/DiscardedEntries.h>
#include <KXFoundation/Platform/Runtime/Epoch.h>
#include <KXFoundation/Platform/Runtime/Prefetch.h>

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
            prefetchToChange(ahead->value.sharedPayload());
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

void DiscardedEntries::retireAll() noexcept {
    // Without memory for this little the entries stay for good: no reader may lose them.
    if (auto* const entries = new (std::nothrow) RetiredEntries(first_)) retireFenced(entries);
}

}  // namespace kx
