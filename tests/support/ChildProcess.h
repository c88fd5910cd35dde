// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <cstdlib>
#include <optional>
#include <utility>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kx::testing {

/// A process of the test's own that does some work and tells of it in numbers, killed when its object goes:
///
///     ChildProcess child([&](auto tell) {
///         for (int number = 0; save(number); ++number) tell(number);
///         return false;
///     });
class ChildProcess {
  public:
    /// `work` runs in the child, whose status is 0 if it answers true.
    template <class Work>
    explicit ChildProcess(Work work) {
        if (::pipe(ends_) != 0) std::abort();
        process_ = ::fork();
        if (process_ != 0) {
            ::close(ends_[1]);
            return;
        }
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::_exit(work([this](int number) { (void)!::write(ends_[1], &number, sizeof number); }) ? 0 : 1);
    }
    ~ChildProcess() {
        kill();
        ::close(ends_[0]);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The next number that the process has told; absent once it has ended and told no more.
    std::optional<int> next() {
        int number = 0;
        if (::read(ends_[0], &number, sizeof number) != sizeof number) return std::nullopt;
        return number;
    }
    void kill() {
        if (process_ <= 0) return;
        ::kill(process_, SIGKILL);
        (void)end();
    }
    /// Waits for its end; the status as waitpid has it.
    int end() {
        int status = -1;
        ::waitpid(std::exchange(process_, 0), &status, 0);
        return status;
    }

  private:
    int ends_[2]{};
    pid_t process_ = 0;
};

}  // namespace kx::testing
