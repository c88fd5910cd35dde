#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>

#include "support/CapturedLog.h"
#include "support/FaultyFileSystem.h"
#include "support/ScopedPlatform.h"

namespace kx {
namespace {

using testing::FaultyFileSystem;
using Then = FaultyFileSystem::Then;

struct NSUserDefaultsFaultTest : ::testing::TestWithParam<Then> {
    static std::shared_ptr<NSUserDefaults> defaults() { return make<NSUserDefaults>("org.example.app"); }
    std::size_t filesLeft() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(platform.directory().path())) {
            count += entry.is_regular_file() ? 1 : 0;
        }
        return count;
    }

    testing::ScopedPlatform platform;
    std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>();
    ScopedPort<FileSystem> scope{files};
    testing::CapturedLog log;
};

/// Every call of a flush fails in turn, while another process has just changed a key of its own.
TEST_P(NSUserDefaultsFaultTest, AFailingCallLosesNothing) {
    bool passed = false;
    std::size_t number = 0;
    while (!passed) {
        ++number;
        ASSERT_LT(number, 100u) << "no end of calls";
        files->heal();
        const auto settings = defaults();
        const auto other = defaults();
        const Value former = settings->objectForKey("key");
        const Value now(static_cast<int>(number));
        settings->setObject("key", now);
        other->setObject("other", now);
        ASSERT_TRUE(other->synchronize());

        files->failCall(number, number % 2 == 0 ? EIO : ENOSPC, GetParam());
        files->resetCounts();
        const bool acknowledged = settings->synchronize();
        passed = files->calls() < number;
        EXPECT_TRUE(acknowledged || !passed);
        EXPECT_EQ(settings->objectForKey("key"), now) << "memory keeps the change, call " << number;

        files->heal();
        const Value found = defaults()->objectForKey("key");
        EXPECT_TRUE(found == now || (!acknowledged && found == former))
            << "call " << number << " left " << found.description();
        EXPECT_EQ(defaults()->objectForKey("other"), now) << "call " << number;
        EXPECT_TRUE(settings->synchronize());
        EXPECT_EQ(defaults()->objectForKey("key"), now) << "a later flush writes it, call " << number;
        EXPECT_EQ(defaults()->objectForKey("other"), now) << "call " << number;
    }
    EXPECT_GT(number, 8u) << "a flush makes more calls than that";
    if (GetParam() == Then::Recovers) {
        EXPECT_EQ(filesLeft(), 2u) << "the file and its lock, nothing temporary";
    }
}

/// Every call of the first read fails in turn: what could not be read is never overwritten.
TEST_P(NSUserDefaultsFaultTest, AnUnreadableFileIsKept) {
    const auto first = defaults();
    first->setObject("old", "kept");
    ASSERT_TRUE(first->synchronize());
    for (std::size_t number = 1; number < 10; ++number) {
        files->failCall(number, EIO, GetParam());
        const auto settings = defaults();
        files->heal();
        settings->setObject("key", static_cast<int>(number));
        EXPECT_TRUE(settings->synchronize());
        EXPECT_EQ(settings->stringForKey("old"), "kept") << "call " << number;
        EXPECT_EQ(defaults()->stringForKey("old"), "kept") << "call " << number;
    }
}

INSTANTIATE_TEST_SUITE_P(After, NSUserDefaultsFaultTest,
                         ::testing::Values(Then::Recovers, Then::StaysBroken));

TEST_F(NSUserDefaultsFaultTest, AFullDiskKeepsTheOldContents) {
    const auto settings = defaults();
    settings->setObject("key", "old");
    ASSERT_TRUE(settings->synchronize());
    files->setRoom(10);
    settings->setObject("key", "new");
    EXPECT_FALSE(settings->synchronize());
    EXPECT_FALSE(settings->synchronize());
    EXPECT_EQ(defaults()->stringForKey("key"), "old");
    EXPECT_EQ(log.lines().size(), 1u);
    files->heal();
    EXPECT_TRUE(settings->synchronize());
    EXPECT_EQ(defaults()->stringForKey("key"), "new");
}

}  // namespace
}  // namespace kx
