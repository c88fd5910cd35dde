#pragma once

#include <atomic>
#include <chrono>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Services/Biometrics.h>

namespace kx {

/// The adapter over fprintd on the system's message bus.
class KX_EXPORT FprintBiometrics final : public Biometrics {
  public:
    /// `patience` is how long an answer is waited for: a service that must be started first takes 100 to 200
    /// ms.
    explicit FprintBiometrics(std::chrono::milliseconds patience = std::chrono::milliseconds(400));

    Result<BiometryType> type() override;

  private:
    const std::chrono::milliseconds patience_;
    std::atomic<std::chrono::nanoseconds> silentUntil_{std::chrono::nanoseconds::min()};
};

}  // namespace kx
