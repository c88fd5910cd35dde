// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Services/IPv4Address.h>

namespace kx {

/// One entry of the system's list of interface addresses. An interface has an entry for each of its
/// addresses.
struct InterfaceAddress {
    std::string name;
    std::optional<IPv4Address> address;  ///< absent if the entry has none or one of another family
    std::optional<IPv4Address> netmask;

    bool operator==(const InterfaceAddress&) const = default;
};

/// The port of the network interfaces. The adapter reads the system's list at every call and names the
/// interfaces as InterfaceNaming says. Any thread.
class KX_EXPORT NetworkInterfaces {
  public:
    virtual ~NetworkInterfaces() = default;

    /// The entries in the system's order.
    virtual Result<std::vector<InterfaceAddress>> addresses() = 0;

    static PortSlot<NetworkInterfaces>& slot();
    static std::shared_ptr<NetworkInterfaces> makeDefault();
};

/// Linux names interfaces after their driver or place ("wlp3s0", "eth0"), while this library's network
/// utilities look for "en0", the one that the machine reaches the world through, and "en1".
enum class InterfaceNaming : std::uint8_t {
    Roles,    ///< the interface of the IPv4 default route is "en0", the next real one with IPv4 "en1"
    Literal,  ///< the system's own names
};

/// Chooses the naming for the whole process; Roles from the start. Bridges, tunnels and the loopback
/// interface get neither name: behind a tunnel's default route, "en0" is the real interface that has the next
/// best one. An interface that has such a name of its own but not the role is then called "literal en0"; an
/// address with a label ("eth0:1") goes by its interface's name. Any thread.
KX_EXPORT void setInterfaceNaming(InterfaceNaming naming) noexcept;
[[nodiscard]] KX_EXPORT InterfaceNaming interfaceNaming() noexcept;

}  // namespace kx
