// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/AppEnvironment/AppLinks.h>
#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/AppEnvironment/StoreLookup.h>
#include <KXFoundation/Core/KXAppInfo.h>
#include <KXFoundation/Platform/Foundation/CurlURLLoader.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/InjectedWeb.h>
#include <KXFoundation/Testing/ScopedPlatform.h>
#include <KXFoundation/Testing/ScopedQueues.h>

#include "support/HTTPSServer.h"

namespace kx {
namespace {

using testing::InjectedWeb;

struct StoreLookupTest : ::testing::Test {
    StoreLookupTest() { setAppLinks({.lookupHost = "lookup.example"}); }

    testing::ScopedQueues queues_;
    testing::ScopedPlatform platform_;
};

std::string wordsOf(const std::shared_ptr<KXAppInfo>& info) {
    if (!info) return "absent";
    return info->releaseVersion().value_or("none") + " " + info->releaseLog().value_or("none");
}

TEST_F(StoreLookupTest, ReadsTheFirstResultOfTheAnswer) {
    const std::pair<Result<URLAnswer>, const char*> rows[] = {
        {URLAnswer{200, R"({"resultCount":1,"results":[{"version":"2.1","releaseNotes":"Fast"}, 7]})"},
         "2.1 Fast"},
        {URLAnswer{500, R"({"results":[{"version":"2.1"}]})"}, "2.1 none"},
        {URLAnswer{200, R"({"results":[{"version":2.1,"releaseNotes":null}]})"}, "none none"},
        {URLAnswer{200, R"({"results":[]})"}, "absent"},
        {URLAnswer{200, R"({"results":{"version":"2.1"}})"}, "absent"},
        {URLAnswer{200, R"({"results":[[{"version":"2.1"}]]})"}, "absent"},
        {URLAnswer{200, R"([{"results":[{}]}])"}, "absent"},
        {URLAnswer{200, "<html>"}, "absent"},
        {URLAnswer{200, ""}, "absent"},
        {Error{ErrorKind::TimedOut, 0, "x"}, "absent"},
    };
    const testing::CapturedLog log;
    for (const auto& [answer, want] : rows) {
        const auto web = std::make_shared<InjectedWeb>(answer);
        const ScopedPort<URLLoader> scope(web);
        std::string got;
        ASSERT_TRUE(KXAppUtils::checkAppInfoFromAppStore("47&11", [&](const auto& info) {
            EXPECT_NE(infoTask.load(), nullptr);
            got = wordsOf(info);
        }));
        drainQueues();
        EXPECT_EQ(got, want) << (answer ? answer->body : "an error");
        EXPECT_EQ(web->asked(), std::vector<std::string>{"https://lookup.example/lookup?id=47%2611"});
        EXPECT_EQ(infoTask.load(), nullptr);
    }
    EXPECT_EQ(log.lines().size(), 0U);
}

TEST_F(StoreLookupTest, OneAtATime) {
    const auto web = std::make_shared<InjectedWeb>(URLAnswer{200, R"({"results":[{"version":"1"}]})"});
    web->hold();
    const ScopedPort<URLLoader> scope(web);
    std::atomic<int> first{0}, second{0};
    EXPECT_TRUE(KXAppUtils::checkAppInfoFromAppStore("1", [&](const auto&) { ++first; }));
    EXPECT_FALSE(KXAppUtils::checkAppInfoFromAppStore("2", [&](const auto&) { ++second; }));
    web->release();
    drainQueues();
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(web->asked(), std::vector<std::string>{"https://lookup.example/lookup?id=1"});
    EXPECT_TRUE(KXAppUtils::checkAppInfoFromAppStore("3", [&](const auto&) { ++second; }));
    drainQueues();
    EXPECT_EQ(second, 1);
}

TEST_F(StoreLookupTest, ACancelledOneAnswersAbsent) {
    KXAppUtils::cancelCheckAppInfo();
    const auto web = std::make_shared<InjectedWeb>();
    web->hold();
    const ScopedPort<URLLoader> scope(web);
    std::string got;
    ASSERT_TRUE(KXAppUtils::checkAppInfoFromAppStore("1", [&](const auto& info) { got = wordsOf(info); }));
    KXAppUtils::cancelCheckAppInfo();
    drainQueues();
    EXPECT_EQ(got, "absent");
    EXPECT_EQ(infoTask.load(), nullptr);
}

TEST_F(StoreLookupTest, WhatIsMissingIsHarmless) {
    setAppLinks({.lookupHost = "no host"});
    std::string got;
    ASSERT_TRUE(KXAppUtils::checkAppInfoFromAppStore({}, [&](const auto& info) { got = wordsOf(info); }));
    drainQueues();
    EXPECT_EQ(got, "absent");
    const testing::LenientMode lenient;
    const testing::CapturedLog log;
    EXPECT_FALSE(KXAppUtils::checkAppInfoFromAppStore("1", nullptr));
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(StoreLookupTest, AsksARealServer) {
    testing::HTTPSServer server;
    setAppLinks({.lookupHost = server.host()});
    const ScopedPort<URLLoader> scope(std::make_shared<CurlURLLoader>(URLLimits(), server.certificateFile()));
    std::string got;
    ASSERT_TRUE(KXAppUtils::checkAppInfoFromAppStore("4711", [&](const auto& info) { got = wordsOf(info); }));
    drainQueues();
    EXPECT_EQ(got, "2.10.1 4711");
}

}  // namespace
}  // namespace kx
