// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Views/NSViewController.h>
#include <KXFoundation/UI/KXUIUtils.h>

namespace kx {
namespace {

/// Waiting for one's own thread is a caller error, which ends a test.
TEST(KXUIUtils, TheCurrentControllerIsAskedForOnAnyQueue) {
    const auto queue = DispatchQueue::serial("harbour");
    EXPECT_EQ(KXUIUtils::currentViewController(), nullptr);
    EXPECT_EQ(queue->sync([] { return KXUIUtils::currentViewController(); }), nullptr);
    bool isAnswered = false;
    queue->async([&] { isAnswered = KXUIUtils::currentViewController() == nullptr; });
    drainQueues();
    EXPECT_TRUE(isAnswered);
}

}  // namespace
}  // namespace kx
