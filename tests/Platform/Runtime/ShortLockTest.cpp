// SPDX-License-Identifier: MIT

#include <chrono>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/ShortLock.h>

#include "support/OnThreads.h"

namespace kx {
namespace {

/// Threads count under one lock, which some hold for longer than the others ask before they sleep.
int counted(int threads, int each, int sleepEvery) {
    ShortLock lock;
    int count = 0;
    testing::onThreads(threads, [&](int) {
        for (int i = 0; i < each; ++i) {
            const ShortLocking locking(lock);
            if (++count % sleepEvery == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    return count;
}

TEST(ShortLock, OneThreadAtATimeAndEachSleeperIsWoken) {
    EXPECT_EQ(counted(4, 50'000, 1'000'000), 200'000) << "short holds";
    EXPECT_EQ(counted(4, 1'000, 50), 4'000) << "some hold it for long";
    EXPECT_EQ(counted(8, 10, 1), 80) << "all do";
}

TEST(ShortLock, TryingFailsWhileAnotherHoldsIt) {
    ShortLock lock;
    const auto isFree = [&] {
        if (!lock.tryLock()) return false;
        lock.unlock();
        return true;
    };
    EXPECT_TRUE(isFree());
    const ShortLocking held(lock);
    std::thread([&] { EXPECT_FALSE(isFree()); }).join();
}

}  // namespace
}  // namespace kx
