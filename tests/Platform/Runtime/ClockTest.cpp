// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Semaphore.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedQueues.h>

namespace kx {
namespace {

using namespace std::chrono_literals;

struct ClockTest : ::testing::Test {
    testing::ScopedQueues queues;
    std::shared_ptr<testing::ManualClock> clock = std::make_shared<testing::ManualClock>();
    ScopedPort<Clock> scope{clock};
    std::string ran;

    void note(char letter, std::chrono::nanoseconds delay) {
        DispatchQueue::main().after(delay, [this, letter] { ran += letter; });
    }
};

TEST_F(ClockTest, AdvancingRunsWhatBecameDueInOrder) {
    note('c', 2s), note('a', 1s), note('d', 2s), note('b', 1s + 1ns), note('e', 2s + 1ns);
    clock->advance(2s);
    EXPECT_EQ(ran, "abcd");
    EXPECT_EQ(clock->pendingTimers(), 1u);
    note('!', -5s);
    clock->advance(0s);
    EXPECT_EQ(ran, "abcd!") << "a delay below zero is none";
    note('?', std::chrono::nanoseconds::max());
    clock->advance(24h);
    EXPECT_EQ(ran, "abcd!e");
}

TEST_F(ClockTest, WhatATimerStartsRunsAtItsOwnTimeBeforeAdvanceReturns) {
    const auto started = clock->now();
    std::vector<std::chrono::nanoseconds> at;
    const auto serial = DispatchQueue::serial("test");
    DispatchQueue::main().after(1s, [&] {
        serial->after(1s,
                      [&] { DispatchQueue::main().async([&] { at.push_back(clock->now() - started); }); });
    });
    clock->advance(5s);
    EXPECT_THAT(at, ::testing::ElementsAre(2s));
    EXPECT_EQ(clock->now() - started, 5s);
}

TEST_F(ClockTest, ErrorsAreLoggedOnceAMinute) {
    const testing::CapturedLog log;
    const Error full{ErrorKind::Full, 0, "disk"};
    for (const auto step : {0s, 59s, 1s, 30s}) {
        clock->advance(step);
        logError("ClockTest", full);
    }
    EXPECT_EQ(log.lines().size(), 2u);
}

TEST_F(ClockTest, ASemaphoresWaitEndsWithTheClock) {
    Semaphore semaphore;
    std::optional<bool> answer;
    DispatchQueue::shared().async([&] { answer = semaphore.waitFor(3s); });
    clock->advance(3s - 1ns);
    EXPECT_EQ(answer, std::nullopt);
    clock->advance(1ns);
    EXPECT_EQ(answer, false);
    DispatchQueue::shared().async([&] { answer = semaphore.waitFor(3s); });
    semaphore.signal();
    drainQueues();
    EXPECT_EQ(answer, true);
}

TEST(SystemClock, RunsBackgroundTimersInOrderOfTheirDeadlines) {
    const auto clock = Clock::makeDefault();
    std::string ran;
    Semaphore given;
    Semaphore done;
    const auto at = clock->now() + 1ms;
    clock->runAt(at - 1ms, TimerThread::Background, [&] { given.wait(); });  // holds the others up
    clock->runAt(at + 2ns, TimerThread::Background, [&] { ran += 'c', done.signal(); });
    clock->runAt(at, TimerThread::Background, [&] { ran += 'a'; });
    clock->runAt(at, TimerThread::Background, [&] { ran += 'b'; });
    given.signal();
    done.wait();
    EXPECT_EQ(ran, "abc");
    EXPECT_GE(clock->now(), at);
}

}  // namespace
}  // namespace kx
