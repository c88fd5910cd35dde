// SPDX-License-Identifier: MIT

#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include <KXFoundation/Core/KXRequestAnswer.h>
#include <KXFoundation/Platform/Runtime/DetachedTask.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedPlatform.h>
#include <KXFoundation/Testing/ScopedQueues.h>

#include "Core/HarbourRequest.h"
#include "support/OwnedTask.h"

namespace kx {
namespace {

using testing::answering;
using testing::HarbourRequest;
using testing::postAnswer;

/// What came of an await, and whether its coroutine's frame is still there.
struct Seen {
    std::string text = "waiting";
    std::string queue;
    Value response;
    std::weak_ptr<int> frame;
};

DetachedTask await(KXRequest& request, KXRequest::Method method, Seen& seen) {
    const auto inFrame = std::make_shared<int>();
    seen.frame = inFrame;
    try {
        const auto outcome = co_await request.answer(method);
        if (outcome) seen.response = outcome->response;
        seen.text = !outcome           ? "none"
                    : outcome->success ? "berths " + outcome->response["berths"].description()
                                       : "error " + std::to_string(outcome->error->code());
    } catch (const std::exception& exception) {
        seen.text = exception.what();
    }
    seen.queue = DispatchQueue::currentQueueLabel();
}

struct KXRequestAnswerTest : ::testing::Test {
    testing::ScopedPlatform platform;
    std::shared_ptr<testing::ManualClock> clock = std::make_shared<testing::ManualClock>();
    ScopedPort<Clock> scope{clock};
    std::shared_ptr<HarbourRequest> request = make<HarbourRequest>();
};

TEST_F(KXRequestAnswerTest, EveryEndResumesTheCoroutineOnce) {
    const std::tuple<const char*, KXRequest::Method, std::function<void()>, const char*> rows[] = {
        {"answered", answering(1), [] { postAnswer(1, std::nullopt, 5); }, "berths 5"},
        {"another's answer", answering(1), [] { postAnswer(2); }, "waiting"},
        {"answered with an error", answering(1), [] { postAnswer(1, -9); }, "error -9"},
        {"not started", answering(-6), [] {}, "error -6"},
        {"an error with the time-out's code", answering(1), [] { postAnswer(1, -4); }, "error -4"},
        {"timed out", answering(1), [&] { clock->advance(std::chrono::seconds(10)); }, "none"},
        {"cleaned", answering(1), [&] { request->clean(); }, "none"},
        {"died", answering(1), [&] { request = nullptr; }, "none"},
        {"died unanswered on another thread", answering(1),
         [&] { std::thread([&] { request = nullptr; }).join(); }, "none"},
        {"answered on another thread", answering(1),
         [] { std::thread([] { postAnswer(1, std::nullopt, 8); }).join(); }, "berths 8"},
        {"threw", [](auto&) -> std::int32_t { throw std::runtime_error("thrown"); }, [] {}, "thrown"},
    };
    for (const auto& [what, method, then, want] : rows) {
        request = make<HarbourRequest>();
        request->setTimeout(std::chrono::seconds(10));
        Seen seen;
        {
            const testing::ScopedQueues queues;
            await(*request, method, seen);
            if (seen.text != "thrown") {
                EXPECT_EQ(seen.text, "waiting") << what;
                then();
            }
        }
        EXPECT_EQ(seen.text, want) << what;
        if (seen.text == "waiting") {
            request->clean();
            drainQueues();
        }
        EXPECT_EQ(seen.queue, "main") << what;
        EXPECT_TRUE(seen.frame.expired()) << what;
    }
}

TEST_F(KXRequestAnswerTest, AFailedStartHasNoResponse) {
    Seen answered, failed;
    {
        const testing::ScopedQueues queues;
        await(*request, answering(1), answered);
        postAnswer(1, std::nullopt, 5);
    }
    {
        const testing::ScopedQueues queues;
        await(*request, answering(-6), failed);
    }
    EXPECT_EQ(answered.text, "berths 5");
    EXPECT_EQ(failed.text, "error -6");
    EXPECT_TRUE(failed.response.isNull()) << "that of the earlier answer";
}

TEST_F(KXRequestAnswerTest, IsRefusedWhileAnotherWaits) {
    Seen first, second;
    {
        const testing::ScopedQueues queues;
        await(*request, answering(1), first);
        await(*request, answering(2), second);
    }
    EXPECT_EQ(second.text, "none");
    EXPECT_EQ(first.text, "waiting");
    postAnswer(1, std::nullopt, 3);
    drainQueues();
    EXPECT_EQ(first.text, "berths 3");
    EXPECT_TRUE(first.frame.expired() && second.frame.expired());
}

testing::OwnedTask awaitForever(std::shared_ptr<KXRequest> request) {
    static_cast<void>(co_await request->answer(answering(1)));
    ADD_FAILURE() << "resumed after its end";
}

TEST_F(KXRequestAnswerTest, ACoroutineDestroyedMeanwhileIsNotResumed) {
    const testing::ScopedQueues queues;
    for (const bool answeredBefore : {false, true}) {
        const auto task = awaitForever(request);
        if (answeredBefore) postAnswer(1);
        task.handle.destroy();
        postAnswer(1);
    }
}

}  // namespace
}  // namespace kx
