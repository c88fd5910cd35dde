// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>

/// Where the message buses listen (D-Bus Specification, "Server Addresses"). No bus is ever started.
namespace kx {

/// The user's bus: DBUS_SESSION_BUS_ADDRESS, else the socket "bus" in XDG_RUNTIME_DIR; absent without both.
[[nodiscard]] KX_EXPORT std::optional<std::string> sessionBusAddress();
/// The machine's bus: DBUS_SYSTEM_BUS_ADDRESS, else the well-known socket.
[[nodiscard]] KX_EXPORT std::string systemBusAddress();

}  // namespace kx
