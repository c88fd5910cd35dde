// SPDX-License-Identifier: MIT

#include <atomic>

#include <KXFoundation/Platform/Graphics/GIF/FrameMemory.h>

namespace kx {

namespace {
constinit std::atomic<std::uint64_t> total{0};
}

std::optional<FrameMemory> FrameMemory::within(std::uint64_t bytes) noexcept {
    std::uint64_t used = inUse();
    do {
        if (bytes > kBudget || used > kBudget - bytes) return std::nullopt;
    } while (!total.compare_exchange_weak(used, used + bytes, std::memory_order_relaxed));
    return FrameMemory(bytes);
}

FrameMemory FrameMemory::regardless(std::uint64_t bytes) noexcept {
    total.fetch_add(bytes, std::memory_order_relaxed);
    return FrameMemory(bytes);
}

std::uint64_t FrameMemory::inUse() noexcept {
    return total.load(std::memory_order_relaxed);
}

FrameMemory::~FrameMemory() {
    total.fetch_sub(bytes_, std::memory_order_relaxed);
}

}  // namespace kx
