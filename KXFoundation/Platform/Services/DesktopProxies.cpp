// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Foundation/ProxySettings.h>
#include <KXFoundation/Platform/Services/BusAddress.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>
#include <KXFoundation/Platform/Services/DesktopProxies.h>

namespace kx {

namespace {

/// The bus may have to start the portal first. Without an answer the address is loaded directly.
constexpr std::uint32_t kTimeoutMilliseconds = 2000;

/// The desktop's words in those of the HTTPS module. Desktops have a SOCKS proxy look the host up, as whoever
/// sets one expects; "socks" alone would be version 4 there.
std::string translated(const std::string& proxy) {
    const std::size_t end = std::min(proxy.find("://"), proxy.size());
    const std::string scheme = proxy.substr(0, end);
    if (scheme == "direct") return {};
    return scheme == "socks" || scheme == "socks5" ? "socks5h" + proxy.substr(end) : proxy;
}

class PortalProxies final : public ProxySettings {
  public:
    std::string proxyFor(const std::string& address) override {
        const auto bus = sessionBusAddress();
        const DesktopModule* const module = bus ? desktopModule() : nullptr;  // nobody to ask: not opened
        if (!module) return {};
        std::string proxy;
        const auto take = [](void* into, const char* found) { *static_cast<std::string*>(into) = found; };
        static_cast<void>(
            module->proxies->lookUp(bus->c_str(), address.c_str(), kTimeoutMilliseconds, take, &proxy));
        return translated(proxy);
    }
};

}  // namespace

PortSlot<ProxySettings>& ProxySettings::slot() {
    static constinit PortSlot<ProxySettings> slot;
    return slot;
}

std::shared_ptr<ProxySettings> ProxySettings::makeDefault() {
    return std::make_shared<PortalProxies>();
}

}  // namespace kx
