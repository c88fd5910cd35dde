// SPDX-License-Identifier: MIT

#include <atomic>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

struct NSUserDefaultsThreadTest : ::testing::Test {
    static std::shared_ptr<NSUserDefaults> defaults() { return make<NSUserDefaults>("org.example.app"); }
    testing::ScopedPlatform platform;
};

TEST_F(NSUserDefaultsThreadTest, AViewSurvivesChangesUntilTheNextRead) {
    const auto settings = defaults();
    settings->setObject("key", std::string(100, 'a'));
    for (const char next : {'b', 'c', 'd', 'e'}) {  // before and after a snapshot was taken
        const std::string_view view = *settings->stringViewForKey("key");
        std::thread([&] {
            settings->setObject("key", std::string(100, next));
            for (int i = 0; i < 4; ++i) EXPECT_EQ(settings->stringViewForKey("key"), std::string(100, next));
        }).join();
        EXPECT_EQ(view, std::string(100, static_cast<char>(next - 1)));
    }
}

TEST_F(NSUserDefaultsThreadTest, TwoThreadsSetReadAndFlush) {
    const auto settings = defaults();
    std::atomic<bool> wrong = false;
    const auto work = [&](std::string own) {
        for (int i = 0; i < 100; ++i) {
            const std::string text = own + std::to_string(i);
            settings->setObject(own, text);
            if (settings->stringViewForKey(own) != text || settings->stringForKey(own) != text) wrong = true;
            const Value shared = settings->objectForKey("shared");
            if (!shared.isNull() && !shared.asString()->starts_with("thread")) wrong = true;
            settings->setObject("shared", "thread " + text);
            if (i % 10 == 0 && !settings->synchronize()) wrong = true;
        }
    };
    std::thread other(work, "other");
    work("own");
    other.join();
    EXPECT_FALSE(wrong);
    EXPECT_TRUE(settings->synchronize());
    EXPECT_EQ(defaults()->stringForKey("own"), "own99");
    EXPECT_EQ(defaults()->stringForKey("other"), "other99");
}

}  // namespace
}  // namespace kx
