// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

/// The port of the proxies that the user has set in the desktop. The adapter (Services/DesktopProxies.cpp)
/// asks the desktop; a test injects some. Any thread.
class KX_EXPORT ProxySettings {
  public:
    virtual ~ProxySettings() = default;

    /// The proxy through which the address is to be loaded, as an address of its own
    /// ("http://proxy.example:3128", "socks5h://..."); empty for none, and where no desktop answers. May wait
    /// for seconds: not on the main thread.
    [[nodiscard]] virtual std::string proxyFor(const std::string& address) = 0;

    static PortSlot<ProxySettings>& slot();
    static std::shared_ptr<ProxySettings> makeDefault();
};

}  // namespace kx
