// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Services/SysfsTorch.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

using testing::TemporaryDirectory;

/// A kernel's folder of lights.
struct FakeLights {
    TemporaryDirectory directory;
    explicit FakeLights(const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            directory.write("sys/class/leds/" + name + "/brightness", "0\n");
            directory.write("sys/class/leds/" + name + "/max_brightness", "200\n");
        }
    }
    [[nodiscard]] std::string brightness(const std::string& name) const {
        const std::string text = directory.read("sys/class/leds/" + name + "/brightness");
        return text.substr(0, text.find('\n'));
    }
};

TEST(SysfsTorch, IsRecognisedByName) {
    const std::pair<std::vector<std::string>, std::optional<std::string>> rows[] = {
        {{}, {}},
        {{"input3::capslock", "mmc0::", "usb-flash", "white:kbd_backlight", "nand:disk-flash"}, {}},
        {{"input3::capslock", "white:flash"}, "white:flash"},
        {{"led:flash_0", "led:torch_1", "led:torch_0"}, "led:torch_0"},
        {{"flashlight", "torch-light0"}, "torch-light0"},
        {{"torch:red:status"}, {}},
    };
    for (const auto& [lights, want] : rows) {
        const FakeLights fake(lights);
        EXPECT_EQ(SysfsTorch(fake.directory.path()).name(), want) << ::testing::PrintToString(lights);
    }
}

TEST(SysfsTorch, WritesTheKernelsSteps) {
    const FakeLights fake({"white:torch"});
    SysfsTorch torch(fake.directory.path());
    const std::tuple<float, const char*, float> rows[] = {
        {1, "200", 1}, {0.5F, "100", 0.5F}, {0.001F, "1", 0.005F}, {0, "0", 0}};
    for (const auto& [level, want, read] : rows) {
        ASSERT_TRUE(torch.setLevel(level));
        EXPECT_EQ(fake.brightness("white:torch"), want);
        EXPECT_EQ(torch.level().value(), read) << level;
    }
}

TEST(SysfsTorch, FailuresHaveTheirKind) {
    const FakeLights fake({"white:torch"});
    const auto files = std::make_shared<testing::FaultyFileSystem>();
    const ScopedPort<FileSystem> scope(files);
    SysfsTorch torch(fake.directory.path());
    files->failCall(1, EACCES, testing::FaultyFileSystem::Then::StaysBroken);
    EXPECT_FALSE(torch.setLevel(1));
    EXPECT_EQ(fake.brightness("white:torch"), "0");
    files->heal();
    files->resetCounts();
    ASSERT_TRUE(torch.setLevel(1));
    const std::size_t calls = files->calls();
    files->failCall(calls, EACCES);  // the write itself: the files belong to the superuser
    EXPECT_EQ(torch.setLevel(0).error().kind, ErrorKind::Denied);
    fake.directory.write("sys/class/leds/white:torch/max_brightness", "many\n");
    EXPECT_EQ(torch.setLevel(1).error().kind, ErrorKind::Corrupt);
    EXPECT_EQ(SysfsTorch(fake.directory / "elsewhere").level().error().kind, ErrorKind::Missing);
}

}  // namespace
}  // namespace kx
