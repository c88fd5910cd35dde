// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// Memory for cache entries. Private to Foundation.
///
/// Entries are destroyed some hundreds at a time, long after they were made and often by another thread. The
/// allocator keeps a few blocks for a thread; the others would go back to the arena of the thread that made
/// them, under its lock, and come out of it again one by one. Here they wait for the next entries, in chains
/// that threads hand to each other whole: two chains a thread, kChainsShared for all.
namespace kx::cacheMemory {

/// What a larger entry takes comes from the allocator itself.
constexpr std::size_t kBlockSize = 120;  // with the allocator's own 8 bytes two lines of the cache
constexpr std::size_t kChainLength = 32;
constexpr std::size_t kChainsShared = 64;

[[nodiscard]] void* allocate(std::size_t size);
void release(void* memory, std::size_t size) noexcept;

}  // namespace kx::cacheMemory
