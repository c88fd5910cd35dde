// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Services/DesktopSecrets.h>
#include <KXFoundation/Platform/Services/KeychainStore.h>

namespace kx {

/// A keychain in the desktop's Secret Service: one item per service and account of the application, in its
/// default collection. Without an answer in time, which a person at a dialogue may be the cause of, a call is
/// TimedOut, and what it was to do may be done or not. After a call that has waited all that time others are
/// TimedOut at once for as long again: what is done in several calls holds its caller up once. Any thread.
class KX_EXPORT SecretServiceKeychain final : public KeychainStore {
  public:
    SecretServiceKeychain(const DesktopSecrets& secrets, std::string busAddress,
                          const std::string& application, std::chrono::milliseconds timeout);

    /// Whether the service can keep items, and says so in time.
    [[nodiscard]] Result<void> probe(std::chrono::milliseconds patience);
    [[nodiscard]] Result<void> probe() { return probe(std::chrono::milliseconds(timeoutMilliseconds_)); }

    Result<std::string> copy(const KeychainItem& item) override;
    Result<void> add(const KeychainItem& item, std::string_view data) override;
    Result<void> remove(const KeychainItem& item) override;

  private:
    template <class Ask>
    [[nodiscard]] DesktopReply reply(Ask ask);

    const DesktopSecrets& secrets_;
    const std::string busAddress_;
    const std::string application_;
    const std::uint32_t timeoutMilliseconds_;
    std::atomic<std::chrono::nanoseconds> silentUntil_{std::chrono::nanoseconds::min()};
};

}  // namespace kx
