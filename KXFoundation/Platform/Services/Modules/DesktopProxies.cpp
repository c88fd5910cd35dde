// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Services/DesktopProxies.h>

#include "DesktopPortal.h"
#include "DesktopServices.h"

namespace kx {

namespace {

// https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.ProxyResolver.html
constexpr const char* kResolver = "org.freedesktop.portal.ProxyResolver";

std::string firstIn(const BusValues& answer) {
    const BusValues proxies(g_variant_get_child_value(answer.get(), 0));
    if (g_variant_n_children(proxies.get()) == 0) return {};
    const BusValues first(g_variant_get_child_value(proxies.get(), 0));
    return g_variant_get_string(first.get(), nullptr);
}

DesktopReply lookUp(const char* busAddress, const char* address, std::uint32_t timeoutMilliseconds,
                    void (*take)(void* context, const char* proxy), void* context) {
    std::string proxy;
    const DesktopReply reply =
        converse(busAddress, timeoutMilliseconds, proxy,
                 [address = std::string(address)](BusConversation& talk, std::string& found) {
                     const auto answer = talk.call({kPortal, kPortalPath, kResolver, "Lookup",
                                                    g_variant_new("(s)", address.c_str()), "(as)"});
                     if (answer) found = firstIn(answer);
                 });
    if (!proxy.empty()) take(context, proxy.c_str());
    return reply;
}

}  // namespace

const DesktopProxies kDesktopProxies{.lookUp = lookUp};

}  // namespace kx
