// SPDX-License-Identifier: MIT

#include <filesystem>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <KXFoundation/Platform/Foundation/ClockFormatSetting.h>
#include <KXFoundation/Platform/Foundation/ProxySettings.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/BusAddress.h>
#include <KXFoundation/Platform/Services/Capabilities.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>
#include <KXFoundation/Platform/Services/DesktopOpener.h>
#include <KXFoundation/Platform/Services/DesktopWorkspace.h>
#include <KXFoundation/Platform/Services/FprintBiometrics.h>
#include <KXFoundation/Platform/Services/ScreenReader.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/ScopedPlatform.h>
#include <KXFoundation/Testing/ScopedQueues.h>

#include "support/ScriptProcess.h"
#include "support/SilentSocket.h"

namespace kx {
namespace {

using testing::ScriptProcess;

constexpr std::chrono::milliseconds kPatience = std::chrono::minutes(1);  // for what does answer

class DesktopServicesTest : public ::testing::Test {
  protected:
    /// Starts a bus with these services; false where this machine cannot.
    bool startBus(const std::vector<std::string>& services) {
        script_.emplace("desktop_bus.py", services);
        address_ = script_->readLine();
        platform_.environment().set("DBUS_SESSION_BUS_ADDRESS", address_);
        platform_.environment().set("DBUS_SYSTEM_BUS_ADDRESS", address_);
        return !address_.empty();
    }

    /// A program named xdg-open that writes down how it was called.
    void addOpener() {
        ASSERT_EQ(::mkfifo((platform_.directory() / "told").c_str(), 0600), 0);
        const std::string program =
            platform_.directory().write("bin/xdg-open", "#!/bin/sh\nprintf '%s|%s|' \"$#\" \"$1\" > '" +
                                                            platform_.directory() / "told" + "'\n");
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        platform_.environment().set("PATH", "relative:" + platform_.directory() / "bin");
    }

    /// Waits for the program to be called.
    std::string told() {
        std::ifstream pipe(platform_.directory() / "told");
        return {std::istreambuf_iterator<char>(pipe), {}};
    }

    testing::ScopedQueues queues_;
    testing::ScopedPlatform platform_;
    std::optional<ScriptProcess> script_;
    std::string address_;
};

TEST_F(DesktopServicesTest, AddressesOfTheBuses) {
    auto& environment = platform_.environment();
    EXPECT_EQ(sessionBusAddress(), std::nullopt);
    environment.set("DBUS_SYSTEM_BUS_ADDRESS", "");
    EXPECT_EQ(systemBusAddress(), "unix:path=/run/dbus/system_bus_socket");
    environment.set("XDG_RUNTIME_DIR", "run/me");
    EXPECT_EQ(sessionBusAddress(), std::nullopt);
    environment.set("XDG_RUNTIME_DIR", "/run/me");
    EXPECT_EQ(sessionBusAddress(), "unix:path=/run/me/bus");
    environment.set("DBUS_SESSION_BUS_ADDRESS", "autolaunch:");
    EXPECT_EQ(sessionBusAddress(), "unix:path=/run/me/bus");
    environment.set("DBUS_SESSION_BUS_ADDRESS", "unix:path=/x");
    EXPECT_EQ(sessionBusAddress(), "unix:path=/x");
}

TEST_F(DesktopServicesTest, ADeadBusIsLeftInTime) {
    const testing::SilentSocket bus;
    ASSERT_TRUE(bus.isListening());
    const std::string address = "unix:path=" + bus.path();
    const auto opened = openModule<DesktopModule>("desktop");
    ASSERT_TRUE(opened) << opened.error().message();
    const auto& opener = *(*opened)->opener;
    EXPECT_EQ(opener.reachBus(address.c_str(), 20), DesktopReply::TimedOut);
    EXPECT_EQ(opener.openAddress(address.c_str(), "https://example.org/", 20), DesktopReply::TimedOut);
    EXPECT_EQ(opener.reachBus("unix:path=/no/such/bus", 60'000), DesktopReply::NoBus);
    EXPECT_EQ(opener.reachBus("no address at all", 60'000), DesktopReply::NoBus);
}

TEST_F(DesktopServicesTest, ASensorOnADeadBusIsNotAskedForAgainAtOnce) {
    const testing::SilentSocket bus;
    platform_.environment().set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + bus.path());
    FprintBiometrics biometrics;
    EXPECT_EQ(biometrics.type(std::chrono::milliseconds(20)).error().kind, ErrorKind::TimedOut);
    platform_.environment().set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/no/such/bus");
    EXPECT_EQ(biometrics.type(kPatience).error().kind, ErrorKind::TimedOut);
    EXPECT_EQ(FprintBiometrics().type(kPatience).error().kind, ErrorKind::Missing);
}

TEST_F(DesktopServicesTest, FingerprintReaders) {
    const std::pair<const char*, BiometryType> rows[] = {{"reader", BiometryType::Fingerprint},
                                                         {"no-reader", BiometryType::None}};
    for (const auto& [service, want] : rows) {
        if (!startBus({service})) GTEST_SKIP() << "no message bus can be started here";
        const auto type = FprintBiometrics().type(kPatience);
        ASSERT_TRUE(type) << type.error().message();
        EXPECT_EQ(*type, want) << service;
    }
    ASSERT_TRUE(startBus({}));
    EXPECT_EQ(FprintBiometrics().type(kPatience).error().kind, ErrorKind::Missing);
}

TEST_F(DesktopServicesTest, ThePortalOpensAddressesButNoFiles) {
    addOpener();
    if (!startBus({"portal"})) GTEST_SKIP() << "no message bus can be started here";
    const auto workspace = std::make_shared<DesktopWorkspace>();
    workspace->openURL(*NSURL::URLWithString("https://example.org/a?b=c"));
    EXPECT_EQ(script_->readLine(), "opened https://example.org/a?b=c");
    workspace->openURL(NSURL::fileURLWithPath("/tmp/a b"));
    EXPECT_EQ(told(), "1|file:///tmp/a%20b|");
}

TEST_F(DesktopServicesTest, WithoutAPortalTheDesktopsOpenerDoes) {
    addOpener();
    const bool hasBus = startBus({});
    if (!hasBus) platform_.environment().set("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    const auto workspace = std::make_shared<DesktopWorkspace>();
    for (const std::string address :
         {"https://example.org/$(touch%20x);'", "itms-apps://store.example/app/id1"}) {
        workspace->openURL(*NSURL::URLWithString(address));
        EXPECT_EQ(told(), "1|" + address + "|");
    }
    script_.reset();
    // Every program that was started is collected: in the end there is no child.
    siginfo_t child;
    while (::waitid(P_ALL, 0, &child, WEXITED | WNOWAIT) == 0) {
    }
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(DesktopServicesTest, WhatCannotBeOpenedIsOneLine) {
    const testing::CapturedLog log;
    platform_.environment().set("PATH", "/no/such/folder:.");
    const auto workspace = std::make_shared<DesktopWorkspace>();
    for (const char* address : {"--help", "//example.org"})
        workspace->openURL(*NSURL::URLWithString(address));
    drainQueues();
    EXPECT_EQ(log.lines().size(), 0U);
    for (int i = 0; i < 2; ++i) workspace->openURL(*NSURL::URLWithString("https://example.org/"));
    drainQueues();
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(DesktopServicesTest, TheDesktopsProxiesAreAskedFor) {
    const auto proxyFor = [](const std::string& host) {
        return ProxySettings::makeDefault()->proxyFor("https://" + host + ".example/");
    };
    EXPECT_EQ(proxyFor("web"), "") << "no bus";
    if (!startBus({"portal"})) GTEST_SKIP() << "no message bus can be started here";
    EXPECT_EQ(proxyFor("web"), "http://proxy.example:3128");
    EXPECT_EQ(proxyFor("socks"), "socks5h://proxy.example:1080");
    EXPECT_EQ(proxyFor("inside"), "");
    EXPECT_EQ(proxyFor("none"), "");
    ASSERT_TRUE(startBus({}));
    EXPECT_EQ(proxyFor("web"), "") << "no portal";
}

/// Waits for the desktop's word, which comes on a thread of the module's own; false if it does not.
template <class Question>
bool eventually(Question isSo) {
    const auto latest = std::chrono::steady_clock::now() + kPatience;
    while (!isSo() && std::chrono::steady_clock::now() < latest) std::this_thread::yield();
    return isSo();
}

TEST_F(DesktopServicesTest, TheDesktopsClockSettingIsFollowed) {
    const std::tuple<const char*, std::string, std::vector<std::string>> rows[] = {
        {"ubuntu:GNOME", "org.gnome.desktop.interface ", {"clock-format 12h", "clock-format 24h"}},
        {"X-Cinnamon", "org.cinnamon.desktop.interface ", {"clock-use-24h false", "clock-use-24h true"}},
    };
    for (const auto& [desktop, schema, changes] : rows) {
        if (!startBus({"portal"})) GTEST_SKIP() << "no message bus can be started here";
        platform_.environment().set("XDG_CURRENT_DESKTOP", desktop);
        const auto setting = ClockFormatSetting::makeDefault();
        const auto becomes = [&](ClockFormat want) {
            return eventually([&] { return setting->clockFormat() == want; });
        };
        EXPECT_TRUE(becomes(ClockFormat::TwentyFourHour)) << desktop;
        script_->writeLine("org.gnome.desktop.interface text-scaling-factor 12h");
        script_->writeLine(schema + changes[0]);
        EXPECT_TRUE(becomes(ClockFormat::TwelveHour)) << desktop;
        script_->writeLine(schema + changes[1]);
        EXPECT_TRUE(becomes(ClockFormat::TwentyFourHour)) << desktop;
        script_->writeLine(schema + changes[1].substr(0, changes[1].find(' ')) + " never");
        EXPECT_TRUE(becomes(ClockFormat::Unset)) << desktop;
    }
}

TEST_F(DesktopServicesTest, TextsAreAnnouncedWhereSomebodyListens) {
    const testing::CapturedLog log;
    platform_.bundle().setInfo("CFBundleDisplayName", "Harbour");
    ScreenReader::makeDefault()->announce("no bus");
    if (!startBus({"accessibility"})) GTEST_SKIP() << "no message bus can be started here";
    const auto reader = ScreenReader::makeDefault();
    const std::pair<std::string, std::string> rows[] = {
        {"Saved \xC3\xBC", "7 Saved \xC3\xBC"},
        {"a\xFF", "2 a\xEF\xBF\xBD"},
        {std::string(4095, 'x') + "\xC3\xBC", "4095 " + std::string(40, 'x')},
    };
    for (const auto& [text, want] : rows) {
        reader->announce(text);
        EXPECT_EQ(script_->readLine(), "application Harbour, 1: " + want);
    }
    EXPECT_EQ(log.lines().size(), 0U);
    ASSERT_TRUE(startBus({"accessibility", "gone"}));
    const auto unheard = ScreenReader::makeDefault();
    unheard->announce("nobody at the address");
    EXPECT_TRUE(eventually([&] { return log.lines().size() == 1; }));
    ASSERT_TRUE(startBus({}));
    ScreenReader::makeDefault()->announce("nobody");
    EXPECT_FALSE(capabilities(kPatience).empty());  // some conversations later
    EXPECT_EQ(log.lines().size(), 1U);
}

/// The answer of that name.
Capability capability(std::string_view name) {
    for (Capability& found : capabilities(kPatience)) {
        if (found.name == name) return std::move(found);
    }
    return {"", false, "there is no such line"};
}

TEST_F(DesktopServicesTest, CapabilitiesTellWhatWorksAndWhyNot) {
    EXPECT_EQ(capability("bus").detail, "the session names no bus");
    EXPECT_EQ(capability("display").detail, "the session names no display");
    for (const char* name : {"curl", "video"}) EXPECT_TRUE(capability(name).works) << name;
    const testing::SilentSocket display;
    platform_.environment().set("WAYLAND_DISPLAY", display.path());
    EXPECT_TRUE(capability("display").works);
    platform_.environment().set("WAYLAND_DISPLAY", display.path() + "-gone");
    EXPECT_FALSE(capability("display").works);
    if (!startBus({"portal", "reader"})) GTEST_SKIP() << "no message bus can be started here";
    for (const char* name : {"bus", "portal", "biometrics"}) EXPECT_TRUE(capability(name).works) << name;
    ASSERT_TRUE(startBus({}));
    EXPECT_TRUE(capability("bus").works);
    EXPECT_FALSE(capability("portal").works);
}

}  // namespace
}  // namespace kx
