// SPDX-License-Identifier: MIT

// Whether a window could be shown, without opening any library for windows.
#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Services/CapabilityProbes.h>

namespace kx {

namespace {

/// Whether somebody listens at a local socket.
Result<void> reach(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) return Error{ErrorKind::TooLarge, 0, path};
    std::memcpy(address.sun_path, path.data(), path.size());
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket < 0) return Error::fromErrno(errno, path);
    const int failure =
        ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? 0 : errno;
    ::close(socket);
    if (failure != 0) return Error::fromErrno(failure, path);
    return {};
}

Capability answer(const std::string& server, const Result<void>& reached) {
    return {"display", reached.ok(), reached ? server : reached.error().message()};
}

Capability probeWayland(const std::string& display) {
    const auto runtime = Environment::slot().current().variable("XDG_RUNTIME_DIR");
    const std::string path = display.starts_with('/') ? display : runtime.value_or("") + "/" + display;
    return answer("Wayland at " + path, reach(path));
}

/// ":1.0" is the second display of this machine; "host:0" is another machine's.
Capability probeX11(const std::string& display) {
    if (!display.starts_with(':')) return {"display", true, "X11 at " + display + ", not tried"};
    const std::string number = display.substr(1, display.find('.') - 1);
    return answer("X11 at " + display, reach("/tmp/.X11-unix/X" + number));
}

}  // namespace

Capability probeDisplay(Patience) {
    const Environment& environment = Environment::slot().current();
    const auto wayland = environment.variable("WAYLAND_DISPLAY");
    const auto x11 = environment.variable("DISPLAY");
    if (wayland) {
        Capability answer = probeWayland(*wayland);
        if (answer.works || !x11) return answer;
    }
    if (x11) return probeX11(*x11);
    return {"display", false, "the session names no display"};
}

}  // namespace kx
