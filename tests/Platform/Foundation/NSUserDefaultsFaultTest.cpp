#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>

#include "support/CapturedLog.h"
#include "support/FaultyFileSystem.h"
#include "support/ScopedPlatform.h"

namespace kx {
namespace {

using testing::FaultyFileSystem;

struct NSUserDefaultsFaultTest : ::testing::Test {
    static std::shared_ptr<NSUserDefaults> defaults() { return make<NSUserDefaults>("org.example.app"); }

    testing::ScopedPlatform platform;
    std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>();
    ScopedPort<FileSystem> scope{files};
    testing::CapturedLog log;
};

TEST_F(NSUserDefaultsFaultTest, AFullDiskKeepsTheOldContents) {
    const auto settings = defaults();
    settings->setObject("key", "old");
    ASSERT_TRUE(settings->synchronize());
    files->setRoom(10);
    settings->setObject("key", "new");
    EXPECT_FALSE(settings->synchronize());
    EXPECT_FALSE(settings->synchronize());
    EXPECT_EQ(defaults()->stringForKey("key"), "old");
    EXPECT_EQ(settings->stringForKey("key"), "new") << "memory keeps the change";
    EXPECT_EQ(log.lines().size(), 1u);
    files->heal();
    EXPECT_TRUE(settings->synchronize());
    EXPECT_EQ(defaults()->stringForKey("key"), "new");
}

}  // namespace
}  // namespace kx
