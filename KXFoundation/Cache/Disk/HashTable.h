// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace kx::disk {

/// Values by a hash that is well mixed already and stands for its key. One array, open addressing with linear
/// probing, two thirds full at most: a look-up mostly touches one line of memory, where a map of nodes
/// touches three. T() marks a free slot, so it is no value. Private to Cache; one thread at a time.
template <class T>
class HashTable {
  public:
    /// T() if there is none.
    [[nodiscard]] T find(std::uint64_t hash) const { return slots_[slotOf(hash)].value; }
    /// Replaces what stood there.
    void set(std::uint64_t hash, T value) {
        if (3 * count_ >= 2 * slots_.size()) grow();
        Slot& slot = slots_[slotOf(hash)];
        if (slot.isFree()) ++count_;
        slot = {hash, std::move(value)};
    }
    void erase(std::uint64_t hash) {
        std::size_t hole = slotOf(hash);
        if (slots_[hole].isFree()) return;
        // What was pushed past the hole moves up into it.
        for (std::size_t at = after(hole); !slots_[at].isFree(); at = after(at)) {
            const std::size_t pushed = (at - slots_[at].hash) & mask();
            if (pushed >= ((at - hole) & mask())) slots_[std::exchange(hole, at)] = slots_[at];
        }
        slots_[hole] = Slot();
        --count_;
    }
    void clear() { *this = HashTable(); }
    [[nodiscard]] std::size_t size() const noexcept { return count_; }

  private:
    struct Slot {
        std::uint64_t hash = 0;
        T value{};
        [[nodiscard]] bool isFree() const { return value == T(); }
    };
    [[nodiscard]] std::size_t mask() const noexcept { return slots_.size() - 1; }
    [[nodiscard]] std::size_t after(std::size_t slot) const noexcept { return (slot + 1) & mask(); }
    /// Where the hash is, or is to go.
    [[nodiscard]] std::size_t slotOf(std::uint64_t hash) const {
        std::size_t at = hash & mask();
        while (!slots_[at].isFree() && slots_[at].hash != hash) at = after(at);
        return at;
    }
    void grow() {
        const std::vector<Slot> former = std::exchange(slots_, std::vector<Slot>(2 * slots_.size()));
        for (const Slot& slot : former) {
            if (!slot.isFree()) slots_[slotOf(slot.hash)] = slot;
        }
    }

    std::vector<Slot> slots_ = std::vector<Slot>(16);  // a power of two
    std::size_t count_ = 0;
};

}  // namespace kx::disk
