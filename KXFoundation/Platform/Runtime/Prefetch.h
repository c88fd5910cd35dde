// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace kx {

/// Bytes between what different threads write: processors fetch the neighbour of a line of their cache with
/// it.
inline constexpr std::size_t kApart = 128;

/// Has the processor fetch the line of its cache at the address for a change: another core gives its copy up
/// now, not when the change comes. Any address will do. Compilers emit the instruction only for processors
/// that they are told of, though all x86-64 ones take it.
inline void prefetchToChange(const void* address) noexcept {
#ifdef __x86_64__
    asm volatile("prefetchw %0" : : "m"(*static_cast<const char*>(address)));
#else
    __builtin_prefetch(address, 1);
#endif
}

}  // namespace kx
