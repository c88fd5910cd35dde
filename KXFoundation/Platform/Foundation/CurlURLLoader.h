// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Foundation/URLLoader.h>

namespace kx {

struct HTTPModule;

/// The adapter over the module for HTTPS. Nothing but HTTPS is loaded, by redirects neither.
class KX_EXPORT CurlURLLoader final : public URLLoader {
  public:
    /// `certificateFile` holds the signers to trust in place of the system's, as PEM; empty for those.
    explicit CurlURLLoader(URLLimits limits = {}, std::string certificateFile = {});

    Result<std::unique_ptr<URLLoading>> open(const std::string& address) override;

  private:
    URLLimits limits_;
    std::string certificateFile_;
};

/// The module for HTTPS, opened at the first call; nullptr where there is none (one log line was written).
[[nodiscard]] KX_EXPORT const HTTPModule* httpModule();

}  // namespace kx
