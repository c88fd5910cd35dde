// SPDX-License-Identifier: MIT

#include <bit>

#include <KXFoundation/Platform/Foundation/DefaultsSnapshot.h>

namespace kx {

DefaultsSnapshot::DefaultsSnapshot(const DefaultsTable& table)
    : mask_(std::bit_ceil(2 * table.size() + 1) - 1), slots_(mask_ + 1) {
    for (const auto& [key, value] : table) {
        std::size_t at = DefaultsKeyHash()(key) & mask_;
        while (!slots_[at].value.isNull()) at = (at + 1) & mask_;
        slots_[at] = {key, value, value.asString()};
    }
}

}  // namespace kx
