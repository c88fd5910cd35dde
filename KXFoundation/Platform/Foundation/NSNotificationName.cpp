// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/NSNotificationName.h>

#define XXH_INLINE_ALL
#include <memory>
#include <string>

#include <xxhash.h>

#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

namespace {

using Interned = NSNotificationName::Interned;

std::uint64_t hashOf(std::string_view text) noexcept {
    return XXH3_64bits(text.data(), text.size());
}

/// A hash table that is read without a lock. Records and outgrown tables are kept: all former tables together
/// are smaller than the one in use.
class NameTable {
  public:
    static NameTable& shared() {
        static auto& table = *new NameTable;
        return table;
    }

    const Interned* find(std::string_view text, std::uint64_t hash) const noexcept {
        const Slots& table = *slots_.load(std::memory_order_acquire);
        for (std::size_t i = hash & table.mask;; i = (i + 1) & table.mask) {
            const Interned* record = table.slots[i].load(std::memory_order_acquire);
            if (!record || (record->hash == hash && record->text == text)) return record;
        }
    }

    const Interned& intern(std::string_view text) {
        const std::uint64_t hash = hashOf(text);
        if (const Interned* found = find(text, hash)) return *found;
        const MutexLock lock(mutex_);
        if (const Interned* found = find(text, hash)) return *found;
        if (2 * (std::size_t{count_} + 1) > slots_.load(std::memory_order_relaxed)->mask + 1) grow();
        const auto* record = new Interned{*new std::string(text), hash, count_++};
        insert(*slots_.load(std::memory_order_relaxed), record);
        return *record;
    }

  private:
    using Slot = std::atomic<const Interned*>;
    struct Slots {
        explicit Slots(std::size_t size) : mask(size - 1), slots(std::make_unique<Slot[]>(size)) {}
        std::size_t mask;
        std::unique_ptr<Slot[]> slots;
    };

    /// Half of the slots are always empty.
    static void insert(const Slots& table, const Interned* record) noexcept {
        std::size_t i = record->hash & table.mask;
        while (table.slots[i].load(std::memory_order_relaxed)) i = (i + 1) & table.mask;
        table.slots[i].store(record, std::memory_order_release);
    }

    void grow() KX_REQUIRES(mutex_) {
        const Slots& former = *slots_.load(std::memory_order_relaxed);
        auto* larger = new Slots(2 * (former.mask + 1));
        for (std::size_t i = 0; i <= former.mask; ++i) {
            if (const Interned* record = former.slots[i].load(std::memory_order_relaxed))
                insert(*larger, record);
        }
        slots_.store(larger, std::memory_order_release);
    }

    Mutex mutex_;
    std::uint32_t count_ KX_GUARDED_BY(mutex_) = 0;
    std::atomic<Slots*> slots_{new Slots(64)};
};

}  // namespace

NSNotificationName NSNotificationName::named(std::string_view text) {
    return NSNotificationName(NameTable::shared().intern(text));
}

std::string_view NSNotificationName::text() const noexcept {
    return interned().text;
}

const Interned* NSNotificationName::find(std::string_view text) noexcept {
    return NameTable::shared().find(text, hashOf(text));
}

const Interned& NSNotificationName::intern() const noexcept {
    const Interned& record = NameTable::shared().intern(literal_);
    interned_.store(&record, std::memory_order_release);
    return record;
}

}  // namespace kx
