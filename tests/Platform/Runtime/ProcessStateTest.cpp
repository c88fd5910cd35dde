// SPDX-License-Identifier: MIT

#include <atomic>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/ProcessState.h>

#include "support/OnThreads.h"

namespace kx {
namespace {

constinit std::atomic<int> made{0}, ready{0};

struct Counted {
    Counted() {
        ++made;
        for (int i = 0; i < 50; ++i) std::this_thread::yield();  // whoever else would make one gets to it
    }
};
constinit ProcessState<Counted> state;

TEST(ProcessState, IsMadeOnceHoweverManyAskFirst) {
    constexpr int kRounds = 50, kThreads = 4;
    for (int round = 1; round <= kRounds; ++round) {
        const ScopedProcessState fresh;
        testing::onThreads(kThreads, [round](int) {
            for (++ready; ready < round * kThreads;) std::this_thread::yield();
            static_cast<void>(state.get());
        });
        EXPECT_EQ(made, round);
    }
}

}  // namespace
}  // namespace kx
