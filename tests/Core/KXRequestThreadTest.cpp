// SPDX-License-Identifier: MIT

#include <atomic>

#include <gtest/gtest.h>

#include <KXFoundation/Core/KXRequestAnswer.h>
#include <KXFoundation/Platform/Runtime/DetachedTask.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

#include "Core/HarbourRequest.h"

namespace kx {
namespace {

using testing::HarbourRequest;

/// A service whose answers come from a background thread by way of the main queue.
class Service {
  public:
    std::int32_t ask() {
        const std::int32_t number = ++last_;
        DispatchQueue::shared().async([number] {
            DispatchQueue::main().async([number] { testing::postAnswer(number, std::nullopt, number); });
        });
        return number;
    }

  private:
    std::int32_t last_ = 0;
};

DetachedTask askAll(std::vector<std::shared_ptr<HarbourRequest>> requests, Service& service,
                    std::atomic<int>& resumed, std::atomic<int>& answered) {
    for (const auto& request : requests) {
        // Answers of one object are serialised by its user: each is posted while no other thread touches it.
        const auto outcome = co_await request->answer([&](auto&) { return service.ask(); });
        if (outcome && outcome->success && request->response()["id"] == outcome->response["berths"])
            ++answered;
        ++resumed;
    }
}

TEST(KXRequestThreads, CoroutinesGoOnByTheMainQueue) {
    const testing::ScopedPlatform platform;
    Service service;
    std::atomic<int> resumed = 0, answered = 0;
    for (int task = 0; task < 20; ++task) {
        std::vector<std::shared_ptr<HarbourRequest>> requests;
        for (int i = 0; i < 20; ++i) requests.push_back(make<HarbourRequest>());
        askAll(std::move(requests), service, resumed, answered);
    }
    drainQueues();
    EXPECT_EQ(resumed, 400);
    EXPECT_EQ(answered, 400);
}

/// A request may be dropped, and its callback's promise with it, on any thread while main goes on.
TEST(KXRequestThreads, ARequestMayDieOnAnyThread) {
    const testing::ScopedPlatform platform;
    std::atomic<int> resumed = 0;
    for (int i = 0; i < 200; ++i) {
        auto request = make<HarbourRequest>();
        [](HarbourRequest& asked, std::atomic<int>& count) -> DetachedTask {
            const auto outcome = co_await asked.answer([](auto&) { return 1; });
            EXPECT_FALSE(outcome.has_value());
            ++count;
        }(*request, resumed);
        DispatchQueue::shared().async([request = std::move(request)]() mutable { request = nullptr; });
    }
    drainQueues();
    EXPECT_EQ(resumed, 200);
}

}  // namespace
}  // namespace kx
