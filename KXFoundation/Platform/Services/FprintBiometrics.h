// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Services/Biometrics.h>

namespace kx {

/// The adapter over fprintd on the system's message bus.
class KX_EXPORT FprintBiometrics final : public Biometrics {
  public:
    Result<BiometryType> type(std::chrono::milliseconds patience) override;

  private:
    std::atomic<std::chrono::nanoseconds> silentUntil_{std::chrono::nanoseconds::min()};
};

}  // namespace kx
