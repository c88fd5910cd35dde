#include <filesystem>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>

#include "support/CapturedLog.h"
#include "support/ScopedPlatform.h"

// Two objects of one identifier stand for two processes; real ones are in tests/faults.

namespace kx {
namespace {

struct NSUserDefaultsSharingTest : ::testing::Test {
    static std::shared_ptr<NSUserDefaults> defaults() { return make<NSUserDefaults>("org.example.app"); }

    testing::ScopedPlatform platform;
    testing::CapturedLog log;
};

TEST_F(NSUserDefaultsSharingTest, MergesKeyByKey) {
    using Step = std::function<void(NSUserDefaults&)>;
    const auto set = [](const char* key, Value value) {
        return [=](NSUserDefaults& settings) { settings.setObject(key, value); };
    };
    const struct {
        const char* what;
        Step theirs, ours;
        Value a, b;  // at the end, in the file and in our memory
    } rows[] = {
        {"another key", set("b", 3), set("a", 2), 2, 3},
        {"the same key: the later flush wins", set("a", 3), set("a", 2), 2, 1},
        {"their removal", set("b", {}), set("a", 2), 2, {}},
        {"our removal", set("b", 3), set("a", {}), {}, 3},
        {"our removal of what they changed", set("a", 3), set("a", {}), {}, 1},
    };
    for (const auto& [what, theirs, ours, a, b] : rows) {
        const auto first = defaults();
        first->setObject("a", 1);
        first->setObject("b", 1);
        ASSERT_TRUE(first->synchronize());
        const auto second = defaults();
        theirs(*second);
        ASSERT_TRUE(second->synchronize());
        ours(*first);
        const auto version = first->version();
        ASSERT_TRUE(first->synchronize());
        EXPECT_EQ(first->version() != version, !(first->objectForKey("b") == Value(1))) << what;
        for (const auto& settings : {first, defaults()}) {
            EXPECT_EQ(settings->objectForKey("a"), a) << what;
            EXPECT_EQ(settings->objectForKey("b"), b) << what;
        }
    }
}

TEST_F(NSUserDefaultsSharingTest, ADeletedFileIsWrittenAgainWhole) {
    const auto settings = defaults();
    settings->setObject("a", 1);
    ASSERT_TRUE(settings->synchronize());
    std::filesystem::remove_all(platform.directory() / "home/config");
    settings->setObject("b", 2);
    ASSERT_TRUE(settings->synchronize());
    EXPECT_EQ(defaults()->objectForKey("a"), Value(1));
    EXPECT_EQ(defaults()->objectForKey("b"), Value(2));
}

}  // namespace
}  // namespace kx
