// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "support/ScriptProcess.h"

namespace kx::testing {

/// An HTTPS server on loopback whose certificate is signed by a signer of its own; what it answers is in
/// https_server.py. Needs python3 and openssl.
class HTTPSServer {
  public:
    HTTPSServer() : script_("https_server.py", {directory_.path()}), port_(script_.readLine()) {}

    /// "127.0.0.1:4711", which is the name that its certificate holds.
    [[nodiscard]] std::string host() const { return "127.0.0.1:" + port_; }
    [[nodiscard]] std::string address(const std::string& path) const { return "https://" + host() + path; }
    [[nodiscard]] const std::string& port() const { return port_; }
    /// The file with its signer's certificate.
    [[nodiscard]] std::string certificateFile() const { return directory_ / "signer.pem"; }
    /// Waits until the path has been asked for.
    bool waitForRequest(const std::string& path) { return script_.waitFor(path); }

  private:
    TemporaryDirectory directory_;
    ScriptProcess script_;
    std::string port_;
};

}  // namespace kx::testing
