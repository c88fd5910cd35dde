#pragma once

#include <cstddef>

namespace kx::testing {

/// What the program holds through `new`, in bytes, on all threads. Only in programs that are linked with
/// CountedMemory.cpp, which replaces that operator.
[[nodiscard]] std::size_t heldMemory() noexcept;

/// The most it ever held since the last call of this.
std::size_t takePeakMemory() noexcept;

}  // namespace kx::testing
