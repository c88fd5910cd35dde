#pragma once

#include <string>

#include <sys/types.h>

#include "support/TemporaryDirectory.h"

namespace kx::testing {

/// A message bus of the test's own: dbus-daemon on a socket in a temporary directory, ended with this object.
class PrivateBus {
  public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Empty where dbus-daemon is not installed.
    [[nodiscard]] const std::string& address() const noexcept { return address_; }

  private:
    TemporaryDirectory directory_;
    pid_t daemon_ = -1;
    std::string address_;
};

}  // namespace kx::testing
