// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Runtime/OperationTable.h>

namespace kx {

constinit const OperationTable::Slots OperationTable::kNone{0, nullptr};

std::uint32_t OperationTable::size() const noexcept {
    return slots_.load(std::memory_order_relaxed)->size;
}

void OperationTable::grow(std::uint32_t size) {
    const Slots& former = *slots_.load(std::memory_order_relaxed);
    if (size <= former.size) return;
    size = std::max({size, former.size * 2, 16U});
    auto grown = std::make_unique<Slots>(Slots{size, std::make_unique<std::atomic<AnyFunction>[]>(size)});
    for (std::uint32_t i = 0; i < former.size; ++i) grown->functions[i].store(former.functions[i].load());
    origins_.resize(size);
    slots_.store(grown.get(), std::memory_order_release);
    kept_.push_back(std::move(grown));
}

void OperationTable::set(std::uint32_t index, AnyFunction implementation, Origin origin) {
    grow(index + 1);
    slots_.load(std::memory_order_relaxed)->functions[index].store(implementation, std::memory_order_release);
    origins_[index] = std::move(origin);
}

OperationTable::Origin OperationTable::origin(std::uint32_t index) const {
    return index < origins_.size() ? origins_[index] : Origin{};
}

void OperationTable::copyFrom(const OperationTable& base) {
    for (std::uint32_t i = 1; i < base.size(); ++i) {
        if (const AnyFunction inherited = base.function(i)) {
            set(i, inherited, {false, base.origins_[i].implementation});
        }
    }
}

}  // namespace kx
