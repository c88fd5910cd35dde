// SPDX-License-Identifier: MIT
#pragma once

#include <thread>
#include <vector>

namespace kx::testing {

/// Calls the body with 0, 1 ... count - 1, each on a thread of its own, and waits for all of them.
template <class Body>
void onThreads(int count, Body body) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back(body, i);
}

}  // namespace kx::testing
