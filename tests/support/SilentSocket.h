// SPDX-License-Identifier: MIT
#pragma once

#include <cstring>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx::testing {

/// A local socket that lets everybody connect and never says a word: what a service that hangs looks like.
class SilentSocket {
  public:
    SilentSocket() : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path().c_str(), sizeof address.sun_path - 1);
        isListening_ = ::bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                       ::listen(socket_, 8) == 0;
    }
    ~SilentSocket() { ::close(socket_); }
    SilentSocket(const SilentSocket&) = delete;
    SilentSocket& operator=(const SilentSocket&) = delete;

    [[nodiscard]] std::string path() const { return directory_ / "socket"; }
    [[nodiscard]] bool isListening() const { return isListening_; }

  private:
    TemporaryDirectory directory_;
    int socket_;
    bool isListening_ = false;
};

}  // namespace kx::testing
