#include <filesystem>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>

#include "support/CapturedLog.h"
#include "support/ScopedPlatform.h"

// Two objects of one identifier stand for two processes; the last test has real ones.

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

constexpr int kKeys = 200;

std::string keyOf(char process, int number) {
    return std::string(1, process) + std::to_string(number);
}

[[noreturn]] void setOwnKeys(char process) {
    const auto settings = make<NSUserDefaults>("org.example.app");
    bool good = true;
    for (int i = 0; i < kKeys; ++i) {
        settings->setObject(keyOf(process, i), i);
        good = settings->synchronize() && good;
    }
    ::_exit(good ? 0 : 1);
}

TEST_F(NSUserDefaultsSharingTest, TwoProcessesLoseNoKey) {
    std::vector<pid_t> children;
    for (const char process : {'a', 'b'}) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) setOwnKeys(process);
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    const auto settings = defaults();
    for (const char process : {'a', 'b'}) {
        for (int i = 0; i < kKeys; ++i) EXPECT_EQ(settings->objectForKey(keyOf(process, i)), Value(i));
    }
}

}  // namespace
}  // namespace kx
