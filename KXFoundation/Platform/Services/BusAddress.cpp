// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Services/BusAddress.h>

namespace kx {

namespace {

/// GIO starts a bus of its own for "autolaunch:": that would be one where nobody else is.
std::optional<std::string> named(const char* variable) {
    auto address = Environment::slot().current().variable(variable);
    return address && !address->starts_with("autolaunch:") ? address : std::nullopt;
}

}  // namespace

std::optional<std::string> sessionBusAddress() {
    if (auto address = named("DBUS_SESSION_BUS_ADDRESS")) return address;
    const auto runtime = Environment::slot().current().variable("XDG_RUNTIME_DIR");
    if (!runtime || !runtime->starts_with('/')) return std::nullopt;
    return "unix:path=" + *runtime + "/bus";
}

std::string systemBusAddress() {
    return named("DBUS_SYSTEM_BUS_ADDRESS").value_or("unix:path=/run/dbus/system_bus_socket");
}

}  // namespace kx
