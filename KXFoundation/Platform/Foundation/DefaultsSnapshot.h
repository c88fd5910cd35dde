// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

struct DefaultsKeyHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const noexcept { return std::hash<std::string_view>()(key); }
};
using DefaultsTable = std::unordered_map<std::string, Value, DefaultsKeyHash, std::equal_to<>>;

/// An immutable copy of the settings, laid out for reading: one array, at most half full, probed from the
/// key's hash on, with key and text beside each other. Any thread. Private to Foundation.
class DefaultsSnapshot {
  public:
    explicit DefaultsSnapshot(const DefaultsTable& table);

    /// The value, null if the key is not set.
    [[nodiscard]] const Value& value(std::string_view key) const noexcept { return slotFor(key).value; }
    /// The value's text, absent if it is none; valid as long as the snapshot.
    [[nodiscard]] std::optional<std::string_view> text(std::string_view key) const noexcept {
        return slotFor(key).text;
    }

  private:
    struct Slot {
        std::string key;
        Value value;  // null: the slot is free, and ends the search
        std::optional<std::string_view> text;
    };

    [[nodiscard]] const Slot& slotFor(std::string_view key) const noexcept {
        std::size_t at = DefaultsKeyHash()(key) & mask_;
        while (!slots_[at].value.isNull() && slots_[at].key != key) at = (at + 1) & mask_;
        return slots_[at];
    }

    std::size_t mask_;
    std::vector<Slot> slots_;
};

}  // namespace kx
