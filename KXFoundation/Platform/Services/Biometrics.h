// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

enum class BiometryType : std::uint8_t { None = 0, Fingerprint = 1, Face = 2 };

/// The port of biometric identification. The adapter asks the fingerprint service (fprintd), which is all
/// that Linux desktops share: it never answers Face. Any thread.
class KX_EXPORT Biometrics {
  public:
    virtual ~Biometrics() = default;

    /// The kind of sensor there is; an error if it cannot be told. Waits that long at most; after a time-out
    /// it answers TimedOut for a minute without asking.
    virtual Result<BiometryType> type(std::chrono::milliseconds patience) = 0;

    static PortSlot<Biometrics>& slot();
    static std::shared_ptr<Biometrics> makeDefault();
};

}  // namespace kx
