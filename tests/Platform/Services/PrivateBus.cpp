#include "Platform/Services/PrivateBus.h"

#include <array>
#include <csignal>
#include <stdexcept>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kx::testing {

namespace {

/// Whoever may connect may do anything; no services are started.
std::string configuration(const std::string& socket) {
    return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
           "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
           "<busconfig><type>session</type><auth>EXTERNAL</auth><listen>unix:path=" +
           socket +
           "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";
}

/// The daemon writes its address once it listens.
std::string lineFrom(int descriptor) {
    std::string line;
    for (char c = 0; ::read(descriptor, &c, 1) == 1 && c != '\n';) line.push_back(c);
    return line;
}

}  // namespace

PrivateBus::PrivateBus() {
    const std::string file =
        "--config-file=" + directory_.write("bus.conf", configuration(directory_ / "bus"));
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 3);
    if (ends[0] != 3) posix_spawn_file_actions_addclose(&actions, ends[0]);
    const std::array arguments{"dbus-daemon", "--nofork", file.c_str(), "--print-address=3",
                               static_cast<const char*>(nullptr)};
    const bool started = ::posix_spawnp(&daemon_, "dbus-daemon", &actions, nullptr,
                                        const_cast<char* const*>(arguments.data()), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (started) {
        address_ = lineFrom(ends[0]);
    } else {
        daemon_ = -1;
    }
    ::close(ends[0]);
    if (started && address_.empty()) throw std::runtime_error("dbus-daemon does not start");
}

PrivateBus::~PrivateBus() {
    if (daemon_ < 0) return;
    ::kill(daemon_, SIGTERM);
    ::waitpid(daemon_, nullptr, 0);
}

}  // namespace kx::testing
