// SPDX-License-Identifier: MIT

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstring>
#include <utility>

#include <ifaddrs.h>
#include <net/if_arp.h>
#include <net/route.h>
#include <netinet/in.h>

#include <KXFoundation/Platform/Services/SystemFiles.h>
#include <KXFoundation/Platform/Services/SystemInterfaces.h>

namespace kx {

namespace {

constinit std::atomic<InterfaceNaming> naming{InterfaceNaming::Roles};

std::optional<IPv4Address> ipv4Of(const sockaddr* address) {
    if (!address || address->sa_family != AF_INET) return std::nullopt;
    sockaddr_in internet;
    std::memcpy(&internet, address, sizeof internet);
    IPv4Address answer;
    std::memcpy(answer.bytes.data(), &internet.sin_addr, answer.bytes.size());
    return answer;
}

/// A default route of the kernel's table (proc_net_route in net/ipv4/fib_trie.c).
struct DefaultRoute {
    std::string interface;
    unsigned long metric;
};

/// Takes the next word off a line of columns.
std::string_view takeWord(std::string_view& line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(" \t"));
    line.remove_prefix(word.size());
    return word;
}

unsigned long number(std::string_view word, int base) {
    unsigned long value = 0;
    std::from_chars(word.data(), word.data() + word.size(), value, base);
    return value;
}

/// The columns are interface, destination, gateway, flags, two counters, metric, mask.
std::optional<DefaultRoute> defaultRouteIn(std::string_view line) {
    const std::string_view interface = takeWord(line);
    const std::string_view destination = takeWord(line);
    (void)takeWord(line);
    const unsigned long flags = number(takeWord(line), 16);
    (void)takeWord(line), (void)takeWord(line);
    const unsigned long metric = number(takeWord(line), 10);
    const std::string_view mask = takeWord(line);
    constexpr std::string_view kAny = "00000000";
    const bool leadsOut = (flags & RTF_UP) && !(flags & RTF_REJECT);
    if (!leadsOut || destination != kAny || mask != kAny) return std::nullopt;
    return DefaultRoute{std::string(interface), metric};
}

/// What the kernel calls the kind of an interface ("bridge", "wlan"); empty for a plain one.
std::string deviceType(FileSystem& files, const std::string& folder) {
    const auto event = readSystemFile(files, folder + "/uevent");
    if (!event) return {};
    constexpr std::string_view kKey = "DEVTYPE=";
    const std::size_t at = event->find(kKey);
    if (at == event->npos) return {};
    return event->substr(at + kKey.size(), event->find('\n', at) - at - kKey.size());
}

bool isTunnelType(std::string_view type) {
    static constexpr std::string_view kTypes[] = {"amt",     "bridge", "bareudp", "geneve", "gtp",
                                                  "l2tpeth", "macsec", "ppp",     "vxlan",  "wireguard"};
    return std::ranges::find(kTypes, type) != std::end(kTypes);
}

/// Which interfaces have the two roles.
struct Roles {
    std::optional<std::string> first, second;

    /// An interface whose own name is a role's, but which has not the role, must not pass for it.
    [[nodiscard]] std::string nameFor(const std::string& own) const {
        if (own == first) return "en0";
        if (own == second) return "en1";
        return own == "en0" || own == "en1" ? "literal " + own : own;
    }
};

}  // namespace

void setInterfaceNaming(InterfaceNaming wanted) noexcept {
    naming.store(wanted, std::memory_order_relaxed);
}

InterfaceNaming interfaceNaming() noexcept {
    return naming.load(std::memory_order_relaxed);
}

PortSlot<NetworkInterfaces>& NetworkInterfaces::slot() {
    static constinit PortSlot<NetworkInterfaces> slot;
    return slot;
}

std::shared_ptr<NetworkInterfaces> NetworkInterfaces::makeDefault() {
    return std::make_shared<SystemInterfaces>();
}

SystemInterfaces::SystemInterfaces(std::string root)
    : files_(FileSystem::slot().shared()), root_(std::move(root)) {}

Result<std::vector<InterfaceAddress>> SystemInterfaces::addresses() {
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0) return Error::fromErrno(errno, "getifaddrs");
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(first, &::freeifaddrs);
    std::vector<InterfaceAddress> list;
    for (const ifaddrs* entry = first; entry; entry = entry->ifa_next)
        list.push_back({entry->ifa_name, ipv4Of(entry->ifa_addr), ipv4Of(entry->ifa_netmask)});
    return interfaceNaming() == InterfaceNaming::Roles ? namedByRole(std::move(list)) : list;
}

/// A piece of hardware, or what passes for one inside a container or a virtual machine: it carries Ethernet
/// frames, and no other interface carries it.
bool SystemInterfaces::isReal(const std::string& interface) const {
    const std::string folder = root_ + "/sys/class/net/" + interface;
    const auto has = [&](const char* name) { return files_->info(folder + name).ok(); };
    if (has("/bridge") || has("/tun_flags") || isTunnelType(deviceType(*files_, folder))) return false;
    // Neither itself nor another one carries its frames: a tunnel ("gretap1@NONE", as ip-link(8) shows it).
    if (readSystemLine(*files_, folder + "/iflink") == "0") return false;
    if (has("/device")) return true;
    return readSystemLine(*files_, folder + "/type") == std::to_string(ARPHRD_ETHER);
}

/// The interfaces that a default route leads through, the preferred one first.
std::vector<std::string> SystemInterfaces::routedInterfaces() const {
    const auto table = readSystemFile(*files_, root_ + "/proc/thread-self/net/route");
    if (!table) return {};
    std::vector<DefaultRoute> routes;
    std::string_view rest = *table;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (auto route = defaultRouteIn(line)) routes.push_back(*std::move(route));
    }
    std::ranges::stable_sort(routes, {}, &DefaultRoute::metric);
    std::vector<std::string> names;
    std::ranges::transform(routes, std::back_inserter(names), &DefaultRoute::interface);
    return names;
}

std::vector<InterfaceAddress> SystemInterfaces::namedByRole(std::vector<InterfaceAddress> list) const {
    // getifaddrs gives the label of an address where it has one ("eth0:1", ip-address(8)).
    for (InterfaceAddress& entry : list) entry.name.resize(std::min(entry.name.find(':'), entry.name.size()));
    const auto hasAddress = [&](const std::string& name) {
        return std::ranges::any_of(list, [&](const auto& e) { return e.name == name && e.address; });
    };
    Roles roles;
    for (const std::string& name : routedInterfaces()) {
        if (!roles.first && hasAddress(name) && isReal(name)) roles.first = name;
    }
    for (const InterfaceAddress& entry : list) {
        if (!roles.second && entry.address && entry.name != roles.first && isReal(entry.name))
            roles.second = entry.name;
    }
    for (InterfaceAddress& entry : list) entry.name = roles.nameFor(entry.name);
    return list;
}

}  // namespace kx
