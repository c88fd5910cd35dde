#pragma once

#include <cstddef>

namespace kx::testing {

/// How often the calling thread has asked for memory through `new`. Only in programs that are linked with
/// CountedAllocations.cpp, which replaces that operator.
[[nodiscard]] std::size_t allocationsOfThisThread() noexcept;

/// What a call of `work` asks for.
template <class Work>
[[nodiscard]] std::size_t allocationsOf(const Work& work) {
    const std::size_t before = allocationsOfThisThread();
    work();
    return allocationsOfThisThread() - before;
}

}  // namespace kx::testing
