// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// What a server said.
struct URLAnswer {
    std::int32_t status = 0;  ///< of HTTP: 200 and the like, errors included
    std::string body;
};

/// The limits of one loading.
struct URLLimits {
    std::chrono::milliseconds time = std::chrono::seconds(60);  ///< from the first to the last byte
    std::uint64_t bodyBytes = std::uint64_t{4} << 20;           ///< unpacked
    std::uint32_t redirects = 5;
};

/// One loading under way, which another thread may want to end.
class KX_EXPORT URLLoading {
  public:
    virtual ~URLLoading() = default;

    /// Loads on the calling thread. A cancelled one gives ECANCELED. Once.
    virtual Result<URLAnswer> run() = 0;
    /// Has run() return soon, even one that is yet to come. Any thread.
    virtual void cancel() = 0;
};

/// The port to the web. The adapter speaks HTTPS through curl's module and follows the system's trusted
/// signers and proxies: those that the environment names (https_proxy, all_proxy, but for no_proxy), else the
/// desktop's own (ProxySettings.h). Any thread, but preparing may wait for the desktop: not the main one.
class KX_EXPORT URLLoader {
  public:
    virtual ~URLLoader() = default;

    /// Prepares a loading with GET; opening the module for the first one takes milliseconds. Unsupported if
    /// this machine cannot.
    virtual Result<std::unique_ptr<URLLoading>> open(const std::string& address) = 0;

    static PortSlot<URLLoader>& slot();
    static std::shared_ptr<URLLoader> makeDefault();
};

}  // namespace kx
