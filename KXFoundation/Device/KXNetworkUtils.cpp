// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>

#include <KXFoundation/Device/KXNetworkUtils.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Services/HostLookup.h>
#include <KXFoundation/Platform/Services/NetworkInterfaces.h>

namespace kx {

namespace {

constexpr std::string_view kFirstName = "en0";
constexpr std::string_view kSecondName = "en1";

bool isOurs(const InterfaceAddress& entry) noexcept {
    return entry.address && (entry.name == kFirstName || entry.name == kSecondName);
}

/// The system's list; empty, and reported, if it cannot be had.
std::vector<InterfaceAddress> interfaces() {
    auto list = NetworkInterfaces::slot().current().addresses();
    if (list) return std::move(list).value();
    logError("network interfaces", list.error());
    return {};
}

IPv4Address gatewayOf(const IPv4Address& address, const IPv4Address& netmask) noexcept {
    IPv4Address gateway;
    for (std::size_t i = 0; i < gateway.bytes.size(); ++i)
        gateway.bytes[i] = address.bytes[i] & netmask.bytes[i];
    gateway.bytes.back() |= 1;
    return gateway;
}

}  // namespace

std::optional<std::string> KXNetworkUtils::localIP() {
    const auto list = interfaces();
    const auto found = std::ranges::find_if(list, isOurs);
    if (found == list.end()) return std::nullopt;
    return found->address->text();
}

std::optional<std::string> KXNetworkUtils::localNetmask() {
    std::optional<IPv4Address> last;
    for (const InterfaceAddress& entry : interfaces()) {
        if (isOurs(entry) && entry.netmask) last = entry.netmask;
    }
    if (!last) return std::nullopt;
    return last->text();
}

std::optional<std::string> KXNetworkUtils::gatewayIP() {
    std::optional<IPv4Address> last;
    for (const InterfaceAddress& entry : interfaces()) {
        if (isOurs(entry) && entry.name == kFirstName && entry.netmask)
            last = gatewayOf(*entry.address, *entry.netmask);
    }
    if (!last) return std::nullopt;
    return last->text();
}

std::optional<std::string> KXNetworkUtils::ipForDomain(std::optional<std::string_view> name) {
    if (!name) return std::nullopt;
    const auto address = lookUpHost(*name);
    if (!address) return std::nullopt;  // a host that is not there is no fault
    return address->text();
}

std::optional<std::string> KXNetworkUtils::getNetworkInfoForKey(std::optional<std::string_view>) {
    return std::nullopt;
}

std::optional<std::string> KXNetworkUtils::currentWiFiSSID() {
    return getNetworkInfoForKey("SSID");
}

std::string KXNetworkUtils::currentWiFiBSSID() {
    return formatMac(getNetworkInfoForKey("BSSID"));
}

}  // namespace kx
