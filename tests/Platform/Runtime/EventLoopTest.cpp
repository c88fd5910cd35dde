// SPDX-License-Identifier: MIT

#include <thread>

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Testing/ScopedQueues.h>

namespace kx {
namespace {

using namespace std::chrono_literals;

struct EventLoopTest : ::testing::Test {
    EventLoopTest() {
        while (loop.drain()) {  // wake-ups that earlier tests left
        }
    }
    bool isReadable() const {
        pollfd one{loop.descriptor(), POLLIN, 0};
        return poll(&one, 1, 0) == 1;
    }
    testing::ScopedQueues queues;
    EventLoop& loop = EventLoop::main();
    std::string ran;
};

TEST_F(EventLoopTest, ItsDescriptorTellsAnotherLoopWhenToDrain) {
    EXPECT_FALSE(isReadable());
    DispatchQueue::main().async([&] {
        ran += 'a';
        DispatchQueue::main().async([&] { ran += 'b'; });
    });
    EXPECT_TRUE(isReadable());
    EXPECT_TRUE(loop.drain());
    EXPECT_EQ(ran, "a") << "what comes meanwhile waits for the next turn";
    EXPECT_TRUE(isReadable());
    EXPECT_TRUE(loop.drain());
    EXPECT_EQ(ran, "ab");
    EXPECT_FALSE(isReadable());
    EXPECT_FALSE(loop.drain());
}

TEST_F(EventLoopTest, TimersEndTheWaitInTheirOrder) {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    loop.runAt(now + 2ms, [&] { ran += 'b', loop.stop(); });
    loop.runAt(now + 1ms, [&] { ran += 'a'; });
    loop.runAt(now - 1s, [&] { ran += '0'; });
    loop.run();
    EXPECT_EQ(ran, "0ab");
}

TEST_F(EventLoopTest, WatchesDescriptorsUntilTheyAreTakenOut) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_TRUE(loop.addDescriptor(ends[0], [&] {
        char byte = 0;
        EXPECT_EQ(read(ends[0], &byte, 1), 1);
        ran += byte;
        if (byte == 'x') loop.removeDescriptor(ends[0]);
    }));
    EXPECT_EQ(write(ends[1], "axb", 3), 3);
    while (loop.drain()) {
    }
    EXPECT_EQ(ran, "ax");
    EXPECT_FALSE(loop.addDescriptor(-1, [] {}));
    close(ends[0]), close(ends[1]);
}

TEST_F(EventLoopTest, BlocksOfOtherThreadsWakeItAndAStillLoopMakesNoTurns) {
    int turns = 0;
    const int number = loop.addBeforeWait([&] { ++turns; });
    std::thread other([&] { DispatchQueue::main().sync([&] { loop.stop(); }); });
    loop.run();
    other.join();
    loop.removeBeforeWait(number);
    EXPECT_LE(turns, 2) << "one for the wait, one more where the block came before it";
    EXPECT_FALSE(loop.runOnce(0ns));
}

TEST_F(EventLoopTest, ALoopNestedInABlockKeepsTheOrder) {
    DispatchQueue::main().async([&] {
        ran += '(';
        loop.drain();
        ran += ')';
    });
    DispatchQueue::main().async([&] { ran += 'a'; });
    while (loop.drain()) {
    }
    EXPECT_EQ(ran, "()a") << "the main queue is serial, in a nested loop too";
}

}  // namespace
}  // namespace kx
