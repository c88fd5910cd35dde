// SPDX-License-Identifier: MIT

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/OperationQueue.h>
#include <KXFoundation/Platform/Runtime/Semaphore.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/ScopedQueues.h>

namespace kx {
namespace {

using ::testing::ElementsAre;

struct DispatchQueueTest : ::testing::Test {
    testing::ScopedQueues queues;
    std::shared_ptr<DispatchQueue> serial = DispatchQueue::serial("test.serial");
};

TEST_F(DispatchQueueTest, ASerialQueueRunsOneAtATimeInOrder) {
    std::vector<int> order;  // unguarded on purpose: the queue is what keeps it whole
    for (int i = 0; i < 1000; ++i) serial->async([&, i] { order.push_back(i); });
    EXPECT_EQ(serial->sync([&] { return order.size(); }), 1000u);
    EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST_F(DispatchQueueTest, LabelsFollowTheBlock) {
    EXPECT_EQ(DispatchQueue::currentQueueLabel(), "main");
    EXPECT_EQ(serial->sync(&DispatchQueue::currentQueueLabel), "test.serial");
    std::string background, fromBackground, ofThread;
    DispatchQueue::shared().async([&] {
        background = DispatchQueue::currentQueueLabel();
        fromBackground = DispatchQueue::main().sync([] {
            EXPECT_TRUE(isMainThread());
            return DispatchQueue::currentQueueLabel();
        });
    });
    drainQueues();
    std::thread([&] { ofThread = DispatchQueue::currentQueueLabel(); }).join();
    EXPECT_EQ(background, "background");
    EXPECT_EQ(fromBackground, "main");
    EXPECT_EQ(ofThread, "");
}

TEST_F(DispatchQueueTest, SyncOnTheQueueOneIsOnIsACallerError) {
    const testing::CapturedLog log;
    const testing::LenientMode lenient;
    const auto other = DispatchQueue::serial("test.other");
    const auto seven = [] { return 7; };
    EXPECT_EQ(serial->sync([&] { return serial->sync(seven); }), 0);
    EXPECT_EQ(serial->sync([&] { return other->sync([&] { return serial->sync(seven); }); }), 0);
    EXPECT_EQ(DispatchQueue::main().sync(seven), 0);
    EXPECT_EQ(serial->sync(seven), 7) << "nothing stayed locked";
    EXPECT_EQ(log.lines().size(), 3u);
}

TEST_F(DispatchQueueTest, AnExceptionReachesTheSynchronousCaller) {
    const auto fail = [] { throw std::runtime_error("the application's own"); };
    EXPECT_THROW(serial->sync(fail), std::runtime_error);
    EXPECT_EQ(serial->sync([] { return 1; }), 1);
    bool reached = false;
    DispatchQueue::shared().async([&] {
        try {
            DispatchQueue::main().sync(fail);
        } catch (const std::runtime_error&) {
            reached = true;
        }
    });
    drainQueues();
    EXPECT_TRUE(reached);
}

TEST_F(DispatchQueueTest, BlocksThatWaitForEachOtherFindAThread) {
    constexpr int kMany = 32;  // more than the threads of the pool
    Semaphore all;
    std::atomic<int> ended = 0;
    for (int i = 0; i < kMany; ++i) {
        DispatchQueue::shared().async([&] {
            all.wait();
            serial->sync([&] { ++ended; });
        });
    }
    DispatchQueue::shared().async([&] {
        for (int i = 0; i < kMany; ++i) all.signal();
    });
    drainQueues();
    EXPECT_EQ(ended, kMany);
}

TEST_F(DispatchQueueTest, AnOperationQueueKeepsItsLimit) {
    OperationQueue operations("test.operations", 2);
    std::atomic<int> running = 0, most = 0;
    for (int i = 0; i < 200; ++i) {
        operations.addOperation([&] {
            const int now = ++running;
            for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) {
            }
            --running;
        });
    }
    operations.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(operations.operationCount(), 0u);
    EXPECT_LE(most, 2);
}

TEST_F(DispatchQueueTest, OperationsThatHaveNotBegunCanBeCancelled) {
    OperationQueue operations("test.operations", 1);
    Semaphore begun, gate;
    std::vector<char> ran;
    const auto first = operations.addOperation([&] { begun.signal(), gate.wait(), ran.push_back('a'); });
    begun.wait();
    const auto second = operations.addOperation([&] { ran.push_back('b'); });
    operations.addOperation([&] { ran.push_back('c'); });
    EXPECT_EQ(operations.describe(), "queue test.operations: width 1, 2 waiting, 1 running");
    EXPECT_TRUE(operations.cancelOperation(second));
    EXPECT_FALSE(operations.cancelOperation(second));
    EXPECT_FALSE(operations.cancelOperation(first)) << "it runs";
    gate.signal();
    operations.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(ran, ElementsAre('a', 'c'));
}

class Pane : public Subclass<Pane, NSObject> {
  public:
    static constexpr bool kMainThreadOnly = true;
    explicit Pane() = default;
    ~Pane() override {
        if (diedOn) *diedOn = std::this_thread::get_id();
    }
    std::optional<std::thread::id>* diedOn = nullptr;
};

TEST_F(DispatchQueueTest, ObjectsOfMainOnlyTypesDieOnTheMainThread) {
    adoptMainThread();
    std::optional<std::thread::id> diedOn;
    auto pane = make<Pane>();
    pane->diedOn = &diedOn;
    std::thread([last = std::move(pane)]() mutable { last.reset(); }).join();
    EXPECT_EQ(diedOn, std::nullopt);
    drainQueues();
    EXPECT_EQ(diedOn, std::this_thread::get_id());
    diedOn.reset();
    pane = make<Pane>();
    pane->diedOn = &diedOn;
    pane.reset();
    EXPECT_EQ(diedOn, std::this_thread::get_id());
}

}  // namespace
}  // namespace kx
