// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

namespace {
constinit std::atomic<std::uint64_t> generation{1};
}

std::uint64_t portGeneration() noexcept {
    return generation.load(std::memory_order_acquire);
}

void bumpPortGeneration() noexcept {
    generation.fetch_add(1, std::memory_order_acq_rel);
}

}  // namespace kx
