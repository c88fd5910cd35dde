// SPDX-License-Identifier: MIT

#include <functional>

#include <gtest/gtest.h>

#include <KXFoundation/Device/KXNetworkUtils.h>
#include <KXFoundation/Platform/Services/IPv4Address.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/CountedMemory.h>
#include <KXFoundation/Testing/InjectedInterfaces.h>

namespace kx {
namespace {

using testing::InjectedInterfaces;
using Text = std::optional<std::string_view>;

TEST(KXNetworkUtils, FormatMACAddress) {
    const std::tuple<Text, std::string_view, std::string_view> rows[] = {
        {"aa:bb:cc:dd:ee:ff", ":", "AA:BB:CC:DD:EE:FF"},
        {"aa-bb-cc-dd-ee-ff", ":", "AA:BB:CC:DD:EE:FF"},
        {"a:b:c:d:e:f", "", "0A0B0C0D0E0F"},
        {"00:1a:2B:3c:4D:5e", "-", "00-1A-2B-3C-4D-5E"},
        {"aa:bb:", ":", "AA:BB:"},
        {"1ab.0", ", ", "1AB, 00"},
        {" a : b ", ":", "0A:00:0B:"},  // the character after the digits is the separator, even a space
        {"::", ":", "00:00:"},
        {"a::b", ":", "0A:00:0B"},  // a field without digits is 0, not the field before it
        {"a\u2192b\u3000c", ":", "0A:0B:0C"},
        {"123456789:1", ":", "FFFFFFFF:01"},
        {"0x1f", ":", "00:1F"},
        {"\xFF\xFF", ":", "00:00:"},
        {std::string_view("a\0b", 3), ":", "0A:0B"},
        {" \t\u00A0\n", ":", ""},
        {"", ":", ""},
        {{}, ":", ""},
        {"a:b", {}, "0A0B"},
    };
    for (const auto& [mac, separator, want] : rows)
        EXPECT_EQ(KXNetworkUtils::formatMACAddress(mac, separator), want)
            << "mac: " << mac.value_or("absent");
    EXPECT_EQ(KXNetworkUtils::formatMac("a-b"), "0A:0B");
}

TEST(KXNetworkUtils, MACNumbers) {
    const std::pair<Text, std::int64_t> rows[] = {
        {"00:11:22:AA:BB:CC", 73'596'058'572},
        {"00-11-22-aa-bb-cc", 73'596'058'572},
        {"0:1-2:0:0:0:5", 0x00'01'00'00'00'05},  // ":" wins; the scan of "1-2" ends at the "-"
        {"0:0:0:0:0:100", 0x100},                // carries
        {"0:0:0:0:1ff:1", 0x1'FF'01},
        {"1: 2:x:3:4:5:6:7", 0x01'02'00'03'04'05},
        {"ffffffffffffffffff:0:0:0:0:0", -0x100'00'00'00'00},
        {"0:0:0:0:0:fffffffffffffffff", -1},
    };
    for (const auto& [mac, want] : rows)
        EXPECT_EQ(KXNetworkUtils::macStringToInteger(mac), want) << "mac: " << mac.value_or("absent");
    for (const Text mac : {Text("00:11:22:AA:BB"), Text("001122AABBCC"), Text(":::::"), Text(""), Text()})
        EXPECT_EQ(KXNetworkUtils::macStringToInteger(mac), 0) << "mac: " << mac.value_or("absent");
    EXPECT_EQ(KXNetworkUtils::formatMACInteger(73'596'058'572, ":"), "00:11:22:AA:BB:CC");
    EXPECT_EQ(KXNetworkUtils::formatMACInteger(0, ":"), "00:00:00:00:00:00");
    for (const Text none : {Text(""), Text()})
        EXPECT_EQ(KXNetworkUtils::formatMACInteger(-1, none), "FFFFFFFFFFFF");
}

TEST(KXNetworkUtils, IpStringToInteger) {
    const std::pair<Text, std::int32_t> rows[] = {
        {"...7", 7},      {"10.0.0.1", 167'772'161},    {"192.168.1.1", -1'062'731'519},
        {"1.2.3", 0},     {"255.255.255.255", -1},      {" 1.+2. 3x.4 5", 0x01'02'03'04},
        {"1.2.3.4.5", 0}, {"1.2.256.4", 0x01'03'00'04}, {"0.0.0.99999999999999999999", 0x7FFF'FFFF},
        {"", 0},          {"1.2.3.-1", 0x01'02'02'FF},  {"0.0.0.-99999999999999999999", INT32_MIN},
        {{}, 0}};
    for (const auto& [text, want] : rows)
        EXPECT_EQ(KXNetworkUtils::ipStringToInteger(text), want) << "text: " << text.value_or("absent");
}

TEST(KXNetworkUtils, TheMachinesAddresses) {
    using Entries = std::vector<InterfaceAddress>;
    using Answer = std::optional<std::string>;
    const IPv4Address loop{{127, 0, 0, 1}}, eight{{255}};
    const IPv4Address home{{192, 168, 1, 57}}, upper{{192, 168, 1, 200}}, office{{10, 1, 2, 3}};
    const IPv4Address whole{{255, 255, 255, 0}}, half{{255, 255, 255, 128}}, alone{{255, 255, 255, 255}};
    const Entries several{{"en1", office, alone}, {"en0", home, whole}, {"en0", upper, half}};
    const std::tuple<const char*, Entries, Answer, Answer, Answer> rows[] = {
        {"none", {}, {}, {}, {}},
        {"usual",
         {{"lo", loop, eight}, {"en0", home, whole}},
         "192.168.1.57",
         "255.255.255.0",
         "192.168.1.1"},
        {"second only", {{"en0", {}, {}}, {"en1", upper, half}}, "192.168.1.200", "255.255.255.128", {}},
        {"first and last", several, "10.1.2.3", "255.255.255.128", "192.168.1.129"},
        {"host route", {{"en0", office, alone}}, "10.1.2.3", "255.255.255.255", "10.1.2.3"},
        {"no netmask", {{"en0", home, {}}}, "192.168.1.57", {}, {}},
        {"other names", {{"EN0", home, whole}, {"en0:1", home, whole}, {"en10", home, whole}}, {}, {}, {}},
    };
    for (const auto& [name, entries, ip, netmask, gateway] : rows) {
        const ScopedPort<NetworkInterfaces> scope(std::make_shared<InjectedInterfaces>(entries));
        EXPECT_EQ(KXNetworkUtils::localIP(), ip) << name;
        EXPECT_EQ(KXNetworkUtils::localNetmask(), netmask) << name;
        EXPECT_EQ(KXNetworkUtils::gatewayIP(), gateway) << name;
    }
}

TEST(KXNetworkUtils, WithoutAListThereIsNoAddressAndOneLine) {
    const testing::CapturedLog log;
    const ScopedPort<NetworkInterfaces> scope(
        std::make_shared<InjectedInterfaces>(Error{ErrorKind::Denied, 0, "getifaddrs"}));
    EXPECT_EQ(KXNetworkUtils::localIP(), std::nullopt);
    EXPECT_EQ(KXNetworkUtils::localNetmask(), std::nullopt);
    EXPECT_EQ(KXNetworkUtils::gatewayIP(), std::nullopt);
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST(KXNetworkUtils, HostsAndWirelessNetworks) {
    EXPECT_EQ(KXNetworkUtils::ipForDomain("127.0.0.1"), "127.0.0.1");
    for (const Text name : {Text(), Text(""), Text(std::string_view("127.0.0.1\0x", 11)), Text("not a host")})
        EXPECT_EQ(KXNetworkUtils::ipForDomain(name), std::nullopt) << name.value_or("absent");
    EXPECT_EQ(KXNetworkUtils::ipForDomain(std::string(100'000, 'a')), std::nullopt);
    EXPECT_EQ(KXNetworkUtils::currentWiFiSSID(), std::nullopt);
    EXPECT_EQ(KXNetworkUtils::currentWiFiBSSID(), "");
}

TEST(AddressTextCost, NothingIsAllocatedBeyondTheAnswer) {
    const std::string hugeMac(20'000, ':'), separator(40, '-');
    std::string hugeNumber(20'000, '9');
    hugeNumber += ".1.2.3";
    const IPv4Address longest{{255, 255, 255, 255}};
    const std::tuple<const char*, std::function<void()>, std::size_t> rows[] = {
        {"MAC to number", [] { (void)KXNetworkUtils::macStringToInteger("00:11:22:AA:BB:CC"); }, 0},
        {"huge MAC to number", [&] { (void)KXNetworkUtils::macStringToInteger(hugeMac); }, 0},
        {"IPv4 to number", [] { (void)KXNetworkUtils::ipStringToInteger("192.168.1.1"); }, 0},
        {"huge IPv4 to number", [&] { (void)KXNetworkUtils::ipStringToInteger(hugeNumber); }, 0},
        {"MAC to MAC", [] { (void)KXNetworkUtils::formatMac("a:b:c:d:e:f"); }, 1},
        {"short MAC", [] { (void)KXNetworkUtils::formatMACAddress("a:b:c:d:e:f", ""); }, 0},
        {"huge MAC to MAC", [&] { (void)KXNetworkUtils::formatMac(hugeMac); }, 1},
        {"number to MAC", [&] { (void)KXNetworkUtils::formatMACInteger(-1, separator); }, 1},
        {"IPv4 to text", [&] { (void)longest.text(); }, 0},
    };
    for (const auto& [name, work, want] : rows) EXPECT_EQ(testing::allocationsOf(work), want) << name;
}

TEST(AddressTextCost, ABlankFieldIsPassedOnlyOnce) {
    // Quadratic work over a million blanks would not end within the test's time.
    const std::string blanks(1'000'000, ' ');
    EXPECT_EQ(KXNetworkUtils::formatMACAddress(blanks + ".", "").size(), 2'000'002U);
}

}  // namespace
}  // namespace kx
