// SPDX-License-Identifier: MIT

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/ProcessState.h>

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
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i) {
            threads.emplace_back([round] {
                for (++ready; ready < round * kThreads;) std::this_thread::yield();
                static_cast<void>(state.get());
            });
        }
        for (auto& thread : threads) thread.join();
        EXPECT_EQ(made, round);
    }
}

}  // namespace
}  // namespace kx
