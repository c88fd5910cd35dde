// SPDX-License-Identifier: MIT

#include <algorithm>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <KXFoundation/Device/KXNetworkUtils.h>
#include <KXFoundation/Platform/Services/SystemInterfaces.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "support/ChildProcess.h"

namespace kx {
namespace {

using testing::TemporaryDirectory;

constexpr std::string_view kRouteTitle =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

/// The kernel's files of a machine that the test makes up.
struct FakeMachine {
    TemporaryDirectory directory;

    void addInterface(const std::string& name, std::string_view type, std::string_view event = "",
                      std::string_view mark = "") {
        const std::string folder = "sys/class/net/" + name + "/";
        directory.write(folder + "type", std::string(type) + "\n");
        directory.write(folder + "uevent", std::string(event) + "INTERFACE=" + name + "\n");
        if (!mark.empty()) directory.write(folder + std::string(mark), "0x1\n");
    }
    void setRoutes(std::string_view lines) {
        directory.write("proc/thread-self/net/route", std::string(kRouteTitle) + std::string(lines));
    }
    /// The names that the interfaces of the list get.
    std::vector<std::string> names(const std::vector<std::string>& list) {
        std::vector<InterfaceAddress> entries;
        for (const std::string& name : list) entries.push_back({name, IPv4Address{{10, 0, 0, 1}}, {}});
        std::vector<std::string> answer;
        for (const auto& entry : SystemInterfaces(directory.path()).namedByRole(entries))
            answer.push_back(entry.name);
        return answer;
    }
};

std::string route(std::string_view interface, int metric, std::string_view destination = "00000000",
                  std::string_view mask = "00000000", std::string_view flags = "0003") {
    return std::string(interface) + "\t" + std::string(destination) + "\t010200C0\t" + std::string(flags) +
           "\t0\t0\t" + std::to_string(metric) + "\t" + std::string(mask) + "\t0\t0\t0\n";
}

TEST(SystemInterfaces, RolesComeFromTheRoutesAndTheKindOfInterface) {
    FakeMachine machine;
    machine.addInterface("lo", "772");
    machine.addInterface("eth0", "1");
    machine.addInterface("wlan0", "1", "DEVTYPE=wlan\n");
    machine.addInterface("wwan0", "519", "DEVTYPE=wwan\n", "device");
    machine.addInterface("virbr0", "1", "DEVTYPE=bridge\n", "bridge/id");
    machine.addInterface("tap0", "1", "", "tun_flags");
    machine.addInterface("wg0", "65534", "DEVTYPE=wireguard\n");
    machine.addInterface("vxlan0", "1", "DEVTYPE=vxlan\n");
    machine.addInterface("gretap1", "1");
    machine.directory.write("sys/class/net/gretap1/iflink", "0\n");
    machine.addInterface("en0", "1");
    using Names = std::vector<std::string>;
    const std::tuple<const char*, std::string, Names, Names> rows[] = {
        {"one", route("eth0", 0), {"lo", "eth0"}, {"lo", "en0"}},
        {"lower metric first", route("wlan0", 600) + route("eth0", 100), {"wlan0", "eth0"}, {"en1", "en0"}},
        {"other routes",
         route("eth0", 0, "000200C0", "00FFFFFF") + route("wlan0", 5),
         {"eth0", "wlan0"},
         {"en1", "en0"}},
        {"half of the world", route("eth0", 0, "00000000", "00000080"), {"eth0"}, {"en1"}},
        {"route that is down", route("eth0", 0, "00000000", "00000000", "0002"), {"eth0"}, {"en1"}},
        {"tunnel", route("wg0", 0) + route("wlan0", 6), {"wg0", "eth0", "wlan0"}, {"wg0", "en1", "en0"}},
        {"bridges", "", {"virbr0", "vxlan0", "wwan0"}, {"virbr0", "vxlan0", "en1"}},
        {"tunnels", "", {"tap0", "wg0", "gretap1", "wwan0"}, {"tap0", "wg0", "gretap1", "en1"}},
        {"labels", route("eth0", 0), {"eth0:home", "wlan0:1", "wg0:1"}, {"en0", "en1", "wg0"}},
        {"many", route("eth0", 0), {"eth0", "eth0", "wlan0", "wlan0"}, {"en0", "en0", "en1", "en1"}},
        {"third", route("eth0", 0), {"wwan0", "eth0", "wlan0"}, {"en1", "en0", "wlan0"}},
        {"own name", route("eth0", 0), {"eth0", "wlan0", "en0"}, {"en0", "en1", "literal en0"}},
        {"own name, other role", route("eth0", 0), {"en0", "eth0"}, {"en1", "en0"}},
        {"unknown interface", route("ghost", 0), {"ghost"}, {"ghost"}},
        {"no address", route("eth0", 0), {"wlan0"}, {"en1"}},
        {"broken table", "eth0\neth0 x\n\n\t\t\t\n" + route("eth0", 0), {"eth0"}, {"en0"}},
    };
    for (const auto& [name, routes, list, want] : rows) {
        machine.setRoutes(routes);
        EXPECT_EQ(machine.names(list), want) << name;
    }
}

TEST(SystemInterfaces, AMachineThatShowsNothingKeepsItsNames) {
    FakeMachine machine;
    EXPECT_EQ(machine.names({"lo", "eth0"}), (std::vector<std::string>{"lo", "eth0"}));
}

TEST(SystemInterfaces, TheLiteralNamesCanBeChosen) {
    const auto has = [](std::string_view name) {
        const auto list = SystemInterfaces().addresses();
        return list && std::ranges::find(*list, name, &InterfaceAddress::name) != list->end();
    };
    setInterfaceNaming(InterfaceNaming::Literal);
    const bool hasLoopback = has("lo");
    const bool hasRole = has("en0");
    setInterfaceNaming(InterfaceNaming::Roles);
    if (!hasLoopback) GTEST_SKIP() << "a machine without any interface";
    EXPECT_FALSE(hasRole);
    EXPECT_TRUE(has("lo"));
}

// ---- real interfaces, in a network of their own ----

/// In a child process: a network namespace with a bridge and two other interfaces. False if this machine does
/// not let us.
bool makeNetwork(const std::string& root) {
    const bool isRoot = ::geteuid() == 0;
    if (::unshare((isRoot ? 0 : CLONE_NEWUSER) | CLONE_NEWNET | CLONE_NEWNS) != 0) return false;
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
    if (::mount("sysfs", (root + "/sys").c_str(), "sysfs", 0, nullptr) != 0) return false;
    return std::system(
               "exec 2>/dev/null; set -e; PATH=$PATH:/usr/sbin:/sbin;"
               "ip link add br0 type bridge; ip link add wired type veth peer name far1;"
               "ip link add radio type veth peer name far2;"
               "ip addr add 10.9.0.1/16 dev br0; ip addr add 192.168.7.200/25 dev wired;"
               "ip addr add 172.20.3.4/12 dev radio;"
               "for i in br0 wired radio far1 far2; do ip link set $i up; done;"
               "ip route add default via 172.20.0.9 dev radio metric 50;"
               "ip route add default via 192.168.7.129 dev wired metric 20") == 0;
}

std::string addressesOfTheNetwork(const std::string& root) {
    const ScopedPort<NetworkInterfaces> scope(std::make_shared<SystemInterfaces>(root));
    const auto orNone = [](const std::optional<std::string>& text) { return text.value_or("none"); };
    return orNone(KXNetworkUtils::localIP()) + " " + orNone(KXNetworkUtils::localNetmask()) + " " +
           orNone(KXNetworkUtils::gatewayIP());
}

TEST(SystemInterfaces, RealInterfacesInANetworkOfTheirOwn) {
    const TemporaryDirectory directory;
    directory.makeDirectory("sys");
    ASSERT_EQ(::symlink("/proc", (directory / "proc").c_str()), 0);
    testing::ChildProcess child([&](auto tell) {
        const bool isAllowed = makeNetwork(directory.path());
        tell(isAllowed);
        if (isAllowed) directory.write("answer", addressesOfTheNetwork(directory.path()));
        return true;
    });
    if (child.next() == 0) GTEST_SKIP() << "this machine allows no network of one's own";
    ASSERT_EQ(child.end(), 0);
    EXPECT_EQ(directory.read("answer"), "192.168.7.200 255.240.0.0 192.168.7.129");
}

}  // namespace
}  // namespace kx
