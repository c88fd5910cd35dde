// SPDX-License-Identifier: MIT

#include <algorithm>
#include <csignal>
#include <future>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Services/StartedProgram.h>

namespace kx {

namespace {

/// What a new program starts with: a session of its own, no open file, no signal blocked or ignored.
class Attributes {
  public:
    Attributes() {
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawn_file_actions_init(&files_);
        ::posix_spawnattr_setflags(&attributes_,
                                   POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
        ::posix_spawn_file_actions_addopen(&files_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        for (const int output : {STDOUT_FILENO, STDERR_FILENO})
            ::posix_spawn_file_actions_addopen(&files_, output, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_addclosefrom_np(&files_, STDERR_FILENO + 1);
    }
    ~Attributes() {
        ::posix_spawn_file_actions_destroy(&files_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* attributes() const { return &attributes_; }
    [[nodiscard]] const posix_spawn_file_actions_t* files() const { return &files_; }

  private:
    posix_spawnattr_t attributes_;
    posix_spawn_file_actions_t files_;
};

void collect(pid_t child) {
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

/// A browser that was started so may run for days: a thread waits for its end, not one of the pool's. It is
/// there before the program, which would stay as a zombie if there could be none.
class Collector {
  public:
    Collector() {
        std::thread([child = child_.get_future()]() mutable {
            if (const pid_t started = child.get(); started > 0) collect(started);
        }).detach();
    }
    void take(pid_t child) { child_.set_value(child); }

  private:
    std::promise<pid_t> child_;
};

Result<pid_t> spawn(const std::string& path, const std::string& argument) {
    std::string program = path;
    std::string given = argument;
    char* const arguments[] = {program.data(), given.data(), nullptr};
    const Attributes attributes;
    pid_t child = 0;
    const int failure =
        ::posix_spawn(&child, path.c_str(), attributes.files(), attributes.attributes(), arguments, environ);
    if (failure != 0) return Error::fromErrno(failure, path);
    return child;
}

}  // namespace

Result<void> startProgram(const std::string& path, const std::string& argument) {
    try {
        Collector collector;
        const auto child = spawn(path, argument);
        collector.take(child ? *child : 0);
        return child ? Result<void>() : child.error();
    } catch (const std::system_error& error) {
        return Error::fromErrno(error.code().value(), path);
    }
}

std::optional<std::string> programInPath(const std::string& name) {
    const auto folders = Environment::slot().current().variable("PATH");
    std::string_view rest = folders ? std::string_view(*folders) : "/usr/local/bin:/usr/bin:/bin";
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
        std::string path = std::string(folder) + "/" + name;
        if (folder.starts_with('/') && ::access(path.c_str(), X_OK) == 0) return path;
    }
    return std::nullopt;
}

}  // namespace kx
