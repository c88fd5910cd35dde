// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSTimeZone.h>
#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Platform/Services/KeychainChoice.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx::testing {
namespace {

TEST(ScopedPlatform, HoldsWhatAPersonSetAndForgetsItAtItsEnd) {
    for (int run = 0; run < 2; ++run) {
        ScopedPlatform platform;
        platform.bundle().setInfo("CFBundleIdentifier", "org.example.app");
        const auto defaults = []() -> NSUserDefaults& { return NSUserDefaults::standardUserDefaults(); };
        EXPECT_EQ(defaults().objectForKey("count"), Value()) << "run " << run;
        EXPECT_EQ(KeychainStore::slot().current().copy({"service", "account"}).error().kind,
                  ErrorKind::Missing);
        defaults().setObject("count", 7);
        ASSERT_TRUE(defaults().synchronize());
        ASSERT_TRUE(KeychainStore::slot().current().add({"service", "account"}, "secret"));
        defaults().setObject("not flushed", 8);
        platform.restart();
        EXPECT_EQ(defaults().objectForKey("count"), Value(7));
        EXPECT_EQ(defaults().objectForKey("not flushed"), Value());
        EXPECT_EQ(*KeychainStore::slot().current().copy({"service", "account"}), "secret");
        EXPECT_EQ(keychainCapability().store, KeychainCapability::Store::File);
    }
}

TEST(ScopedPlatform, StandsOnAMachineThatTheTestDescribes) {
    ScopedPlatform platform;
    EXPECT_EQ(NSTimeZone::systemTimeZone()->name(), "UTC");
    platform.setTimeZone("Asia/Almaty");
    EXPECT_EQ(NSTimeZone::systemTimeZone()->name(), "Asia/Almaty");
    EXPECT_EQ(NetworkInterfaces::slot().current().addresses()->size(), 1U);
    platform.setInterfaces(Error{ErrorKind::Denied, 0, "getifaddrs"});
    EXPECT_FALSE(NetworkInterfaces::slot().current().addresses());
    EXPECT_EQ(Torch::slot().current().name(), std::nullopt);
    platform.writeSystemFile("sys/class/leds/white:torch/max_brightness", "255\n");
    platform.writeSystemFile("sys/class/leds/white:torch/brightness", "0\n");
    EXPECT_EQ(Torch::slot().current().name(), "white:torch");
}

TEST(ScopedPlatform, LeavesNoAdapterBehindThatWasMadeInside) {
    const auto environment = std::make_shared<FakeEnvironment>();
    environment->set("TZ", "Asia/Tokyo");
    const ScopedPort<Environment> scope(environment);
    const ScopedPort<TimeZoneSettings> zone(nullptr);
    { const ScopedPlatform platform; }
    EXPECT_EQ(TimeZoneSettings::slot().current().systemTimeZoneName(), "Asia/Tokyo");
}

}  // namespace
}  // namespace kx::testing
