// SPDX-License-Identifier: MIT

#include <future>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/CurlURLLoader.h>
#include <KXFoundation/Platform/Foundation/NSURLSession.h>
#include <KXFoundation/Platform/Foundation/ProxySettings.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/Testing/ScopedPlatform.h>
#include <KXFoundation/Testing/ScopedQueues.h>

#include "support/HTTPSServer.h"

namespace kx {
namespace {

using testing::HTTPSServer;
using namespace std::chrono_literals;

/// A server that every test of a run asks.
HTTPSServer& server() {
    static HTTPSServer server;
    return server;
}

class NSURLSessionTest : public ::testing::Test {
  protected:
    /// Loads with these limits and waits for the completion.
    Result<URLAnswer> load(const std::string& address, URLLimits limits = {}, bool trusts = true) {
        const ScopedPort<URLLoader> scope(
            std::make_shared<CurlURLLoader>(limits, trusts ? server().certificateFile() : ""));
        std::promise<Result<URLAnswer>> promise;
        NSURLSession::dataTaskWithURL(NSURL::URLWithString(address), [&](const Result<URLAnswer>& answer) {
            EXPECT_FALSE(isMainThread());
            promise.set_value(answer);
        })->resume();
        auto answer = promise.get_future().get();
        drainQueues();
        return answer;
    }

    testing::ScopedQueues queues_;
    testing::ScopedPlatform platform_;  // no proxy in its environment
};

TEST_F(NSURLSessionTest, LoadsWhateverTheStatus) {
    const std::tuple<const char*, std::int32_t, std::string> rows[] = {
        {"/big?5", 200, "xxxxx"}, {"/big?0", 200, ""},     {"/error", 500, "gone wrong"},
        {"/none", 404, ""},       {"/hops?5", 200, "xxx"},
    };
    for (const auto& [path, status, body] : rows) {
        const auto answer = load(server().address(path));
        ASSERT_TRUE(answer) << path << " " << answer.error().message();
        EXPECT_EQ(answer->status, status) << path;
        EXPECT_EQ(answer->body, body) << path;
    }
}

TEST_F(NSURLSessionTest, WhatItDoesNotLoadHasItsKind) {
    const URLLimits few{.bodyBytes = 1000};
    struct {
        std::string address;
        ErrorKind want;
        URLLimits limits = {};
        bool trusts = true;
    } const rows[] = {
        {server().address("/silent"), ErrorKind::TimedOut, {.time = 50ms}},
        {server().address("/endless"), ErrorKind::TooLarge},
        {server().address("/headers"), ErrorKind::TooLarge},
        {server().address("/big?1001"), ErrorKind::TooLarge, few},
        {server().address("/hops?6"), ErrorKind::Denied},
        {server().address("/plain"), ErrorKind::Denied},
        {server().address("/big?1"), ErrorKind::Denied, {}, false},              // unknown signer
        {"https://localhost:" + server().port() + "/big?1", ErrorKind::Denied},  // another name
        {"https://127.0.0.1:1/", ErrorKind::Missing},                            // nobody listens
        {"http://" + server().host() + "/big?1", ErrorKind::Unsupported},
        {"file:///etc/passwd", ErrorKind::Unsupported},
        {"no address", ErrorKind::Unsupported},
    };
    for (const auto& row : rows) {
        const auto answer = load(row.address, row.limits, row.trusts);
        ASSERT_FALSE(answer) << row.address;
        EXPECT_EQ(answer.error().kind, row.want) << answer.error().message();
    }
    EXPECT_TRUE(load(server().address("/big?1000"), few));
}

/// A desktop whose every address goes through a proxy that nobody listens at.
struct InjectedProxy final : ProxySettings {
    std::string proxyFor(const std::string&) override {
        ++asked;
        return "http://127.0.0.1:1";
    }
    int asked = 0;
};

TEST_F(NSURLSessionTest, FollowsTheSystemsProxies) {
    const auto desktop = std::make_shared<InjectedProxy>();
    const ScopedPort<ProxySettings> scope(desktop);
    EXPECT_FALSE(load(server().address("/big?1")));
    EXPECT_EQ(desktop->asked, 1);
    platform_.environment().set("https_proxy", "http://127.0.0.1:1");
    EXPECT_FALSE(load(server().address("/big?1")));
    platform_.environment().set("no_proxy", "example.org,127.0.0.1");
    EXPECT_TRUE(load(server().address("/big?1")));
    EXPECT_EQ(desktop->asked, 1) << "the environment goes first";
}

TEST_F(NSURLSessionTest, CancellingEndsALoadingOnce) {
    const ScopedPort<URLLoader> scope(
        std::make_shared<CurlURLLoader>(URLLimits(), server().certificateFile()));
    std::vector<int> errors;
    const auto collect = [&](const Result<URLAnswer>& answer) {
        errors.push_back(answer ? 0 : answer.error().systemError);
    };
    const auto running =
        NSURLSession::dataTaskWithURL(NSURL::URLWithString(server().address("/silent")), collect);
    running->resume();
    running->resume();
    ASSERT_TRUE(server().waitForRequest("/silent"));
    running->cancel();
    running->cancel();
    drainQueues();
    const auto unstarted =
        NSURLSession::dataTaskWithURL(NSURL::URLWithString(server().address("/big?1")), collect);
    unstarted->cancel();
    unstarted->resume();
    drainQueues();
    EXPECT_EQ(errors, (std::vector<int>{ECANCELED, ECANCELED}));
    running->cancel();
    drainQueues();
    EXPECT_EQ(errors.size(), 2U);
}

TEST_F(NSURLSessionTest, CancellingEndsATaskThatWaitsForItsTurn) {
    const ScopedPort<URLLoader> scope(
        std::make_shared<CurlURLLoader>(URLLimits(), server().certificateFile()));
    std::vector<std::shared_ptr<NSURLSessionTask>> silent;
    for (int i = 0; i < 2; ++i) {  // as many as run at a time
        silent.push_back(
            NSURLSession::dataTaskWithURL(NSURL::URLWithString(server().address("/silent")), {}));
        silent.back()->resume();
        ASSERT_TRUE(server().waitForRequest("/silent"));
    }
    std::promise<int> ended;
    const auto waiting = NSURLSession::dataTaskWithURL(
        NSURL::URLWithString(server().address("/big?1")),
        [&](const Result<URLAnswer>& answer) { ended.set_value(answer ? 0 : answer.error().systemError); });
    waiting->resume();
    waiting->cancel();
    EXPECT_EQ(ended.get_future().get(), ECANCELED);  // while both of the others are still silent
    for (const auto& task : silent) task->cancel();
    drainQueues();
}

TEST_F(NSURLSessionTest, TheProcessExitsWithoutWaitingForALoading) {
    const std::string address = server().address("/silent");
    const std::string certificate = server().certificateFile();
    const auto exitWhileLoading = [&] {
        URLLoader::slot().replace(std::make_shared<CurlURLLoader>(URLLimits(), certificate));
        NSURLSession::dataTaskWithURL(NSURL::URLWithString(address), nullptr)->resume();
        if (!server().waitForRequest("/silent")) std::_Exit(1);
        std::exit(0);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitWhileLoading(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kx
