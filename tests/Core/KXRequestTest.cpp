// SPDX-License-Identifier: MIT

#include <stdexcept>

#include <gmock/gmock.h>

#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedPlatform.h>
#include <KXFoundation/Testing/ScopedQueues.h>

#include "Core/HarbourRequest.h"

namespace kx {
namespace {

using testing::answering;
using ::testing::ElementsAre;
using testing::HarbourRequest;
using ::testing::IsEmpty;
using testing::postAnswer;

struct KXRequestTest : ::testing::Test {
    KXRequest::Callback callback() {
        return [this](bool success, const KXRequest::Error& error) { told("C", success, error); };
    }
    KXRequest::CallbackWithUserInfo callbackWithUserInfo() {
        return [this](bool success, const KXRequest::Error& error, const Value& userInfo) {
            told("U", success, error);
            if (!userInfo.isNull()) calls.back() += " " + userInfo.description();
        };
    }
    void told(std::string who, bool success, const KXRequest::Error& error) {
        calls.push_back(who + (success ? " yes " : " no ") + (error ? std::to_string(error->code()) : "-"));
        errors.push_back(error);
    }
    void start(KXRequest::Method method, bool autoClean = true) {
        request->requestMethod(method, callback(), callbackWithUserInfo(), autoClean);
    }

    testing::ScopedPlatform platform;
    std::shared_ptr<HarbourRequest> request = make<HarbourRequest>();
    std::vector<std::string> calls;
    std::vector<KXRequest::Error> errors;
};

TEST_F(KXRequestTest, AStartEndsAsItsMethodSays) {
    const struct {
        const char* what;
        KXRequest::Method method;
        std::int32_t failure, identifier;  // failure: the code that the callbacks are told, else 0
    } rows[] = {
        {"started", answering(12), 0, 12},
        {"number 0", answering(0), 0, 0},
        {"failed", answering(-5), -5, 0},
        {"failed with a code of its own", [](auto& error) { return error->setCode(-7), -5; }, -7, 0},
        {"a number, but a code", [](auto& error) { return error->setCode(-2), 12; }, -2, 0},
        {"another record", [](auto& error) { return error = KXError::errorWithCode(3), -5; }, -5, 0},
        {"no record left", [](auto& error) { return error = nullptr, -5; }, 0, -5},
        {"a positive code", [](auto& error) { return error->setCode(4), 12; }, 0, 12},
    };
    for (const auto& [what, method, failure, identifier] : rows) {
        request = make<HarbourRequest>();
        calls.clear();
        start(method, true);
        std::vector<std::string> wantCalls;
        for (const char* who : {"C no ", "U no "})
            if (failure != 0) wantCalls.push_back(who + std::to_string(failure));
        EXPECT_EQ(calls, wantCalls) << what;
        EXPECT_EQ(request->identifier(), identifier) << what;
        const bool isKept = request->callback() && request->callbackWithUserInfo() && request->autoClean();
        EXPECT_EQ(isKept, failure == 0) << what;
    }
}

TEST_F(KXRequestTest, IsRefusedWhileOneIsWaiting) {
    start(answering(12));
    bool ran = false;
    start([&](auto&) { return ran = true, 13; }, false);
    EXPECT_FALSE(ran);
    ASSERT_THAT(calls, ElementsAre("C no -3", "U no -3"));
    EXPECT_EQ(errors[0]->message(), "请稍后再试");
    EXPECT_NE(errors[0], errors[1]) << "each its own";
    EXPECT_TRUE(request->autoClean());
    calls.clear();
    postAnswer(12);
    EXPECT_THAT(calls, ElementsAre("C yes -", "U yes -"));
}

TEST_F(KXRequestTest, TheAnswerOfItsNumberIsDelivered) {
    const std::pair<std::optional<std::int32_t>, std::vector<std::string>> rows[] = {
        {std::nullopt, {"C yes -", "U yes -"}},
        {0, {"C yes 0", "U yes 0"}},
        {4, {"C yes 4", "U yes 4"}},
        {-4, {"C no -4", "U no -4"}},
    };
    for (const auto& [code, wantCalls] : rows) {
        calls.clear();
        start(answering(12));
        request->setRequestInfo("mine");
        postAnswer(13, -1);
        EXPECT_THAT(calls, IsEmpty());
        postAnswer(12, code, 5);
        EXPECT_EQ(calls, wantCalls);
        EXPECT_TRUE(!request->callback() && !request->callbackWithUserInfo() && !request->autoClean());
        EXPECT_EQ(request->identifier(), 0);
        EXPECT_TRUE(request->requestInfo().isNull());
        postAnswer(0);  // what an idle object that listened still would take
        EXPECT_EQ(calls, wantCalls);
        EXPECT_EQ(request->response()["berths"], Value(5)) << "stays";
    }
}

TEST_F(KXRequestTest, WithoutAutoCleanItGoesOnListening) {
    start(answering(12), false);
    postAnswer(12);
    postAnswer(12);
    EXPECT_THAT(calls, ElementsAre("C yes -", "U yes -", "C yes -", "U yes -"));
    request->clean();
    postAnswer(12);
    postAnswer(0);
    EXPECT_EQ(calls.size(), 4u);
}

TEST_F(KXRequestTest, AnIdleObjectThatFailedToStartStillListens) {
    start(answering(-1));
    request->setCallback(callback());
    postAnswer(0);
    EXPECT_THAT(calls, ElementsAre("C no -1", "U no -1", "C yes -"));
    start(answering(0));
    start(answering(0));  // not busy; replaces the callbacks and registers anew
    calls.clear();
    postAnswer(0);
    EXPECT_THAT(calls, ElementsAre("C yes -", "U yes -"));
}

TEST_F(KXRequestTest, TheBaseClassTakesAnyNotificationWithoutAName) {
    const auto base = make<KXRequest>();
    base->requestMethodCallbackWithUserInfo(answering(0), callbackWithUserInfo());
    NSNotificationCenter::defaultCenter().postNotificationName("");
    EXPECT_THAT(calls, ElementsAre("U yes -"));
    EXPECT_EQ(base->response(), DictionaryBuilder().build());
}

TEST_F(KXRequestTest, CallbacksMayDoAsTheyLike) {
    request->requestMethod(answering(1), [&](bool, const auto&) { request->clean(); });
    request->setCallbackWithUserInfo(callbackWithUserInfo());
    postAnswer(1);
    EXPECT_THAT(calls, IsEmpty()) << "cleaned before the second was asked for";

    request->requestMethod(answering(1), [&](bool, const auto&) { request = nullptr; });
    request->callback(nullptr);
    EXPECT_EQ(request, nullptr);
    postAnswer(1);

    request = make<HarbourRequest>();
    request->setCallbackWithUserInfo(callbackWithUserInfo());
    request->callback(true, nullptr, 7);
    EXPECT_THAT(calls, ElementsAre("U yes - 7"));

    std::vector<int> counted;
    request->setCallback([&, n = 0](bool, const auto&) mutable { counted.push_back(++n); });
    for (int i = 0; i < 3; ++i) request->callback(nullptr);
    EXPECT_THAT(counted, ElementsAre(1, 2, 3)) << "one function with one state";
}

TEST_F(KXRequestTest, WhatACallbackOwnsMayCleanTheObjectAsItGoes) {
    for (const bool answered : {true, false}) {
        request->requestMethod(answering(1), [owned = std::shared_ptr<void>(nullptr, [&](void*) {
                                                  request->clean();
                                                  calls.emplace_back("gone");
                                              })](bool, const auto&) {});
        answered ? postAnswer(1) : request->clean();
    }
    EXPECT_THAT(calls, ElementsAre("gone", "gone"));
}

TEST_F(KXRequestTest, ACallbackThatThrowsLeavesTheObjectUsable) {
    const auto throws = [](bool, const auto&) { throw std::runtime_error("thrown"); };
    EXPECT_THROW(request->requestMethod(answering(-2), throws), std::runtime_error);
    EXPECT_EQ(request->identifier(), 0);
    request->requestMethod(answering(13), throws);
    EXPECT_THROW(postAnswer(13), std::runtime_error);
    EXPECT_EQ(request->identifier(), 0);
    start(answering(14));
    postAnswer(14);
    EXPECT_THAT(calls, ElementsAre("C yes -", "U yes -"));
}

TEST_F(KXRequestTest, AStartWithoutMethodIsACallerError) {
    const testing::LenientMode lenient;
    const testing::CapturedLog log;
    start(nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("KXRequest: no method to run"));
    EXPECT_THAT(calls, IsEmpty());
}

/// A request of three seconds, on a clock of the test's.
struct KXRequestTimeTest : KXRequestTest {
    KXRequestTimeTest() { request->setTimeout(std::chrono::seconds(3)); }

    testing::ScopedQueues queues;
    std::shared_ptr<testing::ManualClock> clock = std::make_shared<testing::ManualClock>();
    ScopedPort<Clock> scope{clock};
};

TEST_F(KXRequestTimeTest, TimesOutUnlessItWasAnswered) {
    start(answering(12), false);
    clock->advance(std::chrono::milliseconds(2999));
    EXPECT_THAT(calls, IsEmpty());
    clock->advance(std::chrono::milliseconds(1));
    EXPECT_THAT(calls, ElementsAre("C no -4", "U no -4"));
    EXPECT_TRUE(request->timedOut());
    EXPECT_EQ(request->identifier(), 0);
    postAnswer(12);
    EXPECT_EQ(calls.size(), 2u) << "too late";

    calls.clear();
    start(answering(12), false);
    postAnswer(12);
    start(answering(13));  // busy: does not begin the time anew
    clock->advance(std::chrono::seconds(2));
    request->clean();
    start(answering(14));  // a wait of its own, of which the first timer knows nothing
    clock->advance(std::chrono::seconds(2));
    EXPECT_EQ(request->identifier(), 14);
    EXPECT_FALSE(request->timedOut());
    clock->advance(std::chrono::seconds(1));
    EXPECT_TRUE(request->timedOut());

    calls.clear();
    start(answering(15));
    request->cleanRequestID();
    start(answering(-5));
    clock->advance(std::chrono::seconds(3));
    EXPECT_THAT(calls, ElementsAre("C no -5", "U no -5")) << "nothing is waiting";

    calls.clear();
    start([&](KXRequest::Error&) {
        start(answering(16));  // whose time is not that of the start around it
        clock->advance(std::chrono::seconds(2));
        request->cleanRequestID();
        return 17;
    });
    clock->advance(std::chrono::seconds(2));
    EXPECT_EQ(request->identifier(), 17);
    request = nullptr;
    clock->advance(std::chrono::hours(1));
}

TEST_F(KXRequestTimeTest, ATimeOutMayStartTheNextRequest) {
    const auto startAnew = [&](bool, const auto&) {
        request->clean();
        request->requestMethod(answering(13), callback(), false);
    };
    request->requestMethod(answering(12), startAnew, false);
    clock->advance(std::chrono::seconds(3));
    EXPECT_EQ(request->identifier(), 13);
    postAnswer(13);
    EXPECT_THAT(calls, ElementsAre("C yes -"));
}

/// Answers to the last while it goes.
class FarewellRequest : public Subclass<FarewellRequest, HarbourRequest> {
  public:
    ~FarewellRequest() override { callback(true, nullptr, "farewell"); }
};

TEST_F(KXRequestTest, ADerivedDestructorMayAnswer) {
    auto farewell = make<FarewellRequest>();
    farewell->setCallbackWithUserInfo(callbackWithUserInfo());
    farewell = nullptr;
    EXPECT_THAT(calls, ElementsAre("U yes - \"farewell\""));
}

}  // namespace
}  // namespace kx
