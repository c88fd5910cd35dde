// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <KXFoundation/Device/KXKeychainUtils.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSError;

/// Domain and code of the error that says that there is no torch, read when the error is made: an application
/// may put its own in place before it calls. The domain must be a text that lives as long as the program.
KX_EXPORT extern std::string_view KXFoundationTorchErrorDomain;     ///< "KXFoundationTorchErrorDomain"
KX_EXPORT extern std::int64_t KXFoundationUnsupportTorchErrorCode;  ///< -1

/// The device that the application runs on, its torch, and the application's items in the keychain. No
/// instances; any thread.
class KX_EXPORT KXDeviceUtils : public KXKeychainUtils {
  public:
    KXDeviceUtils() = delete;

    /// The name under which the device is sold ("iPhone X"); the kernel's name of the hardware if it is not
    /// in the table (DeviceModels.h). A 64-bit PC is "iPhone Simulator".
    [[nodiscard]] static std::string deviceModel();
    /// The text that the application keeps in the keychain under "IDFV", the device's identifier; without one
    /// an empty text, which is stored there then. The library makes no identifier itself.
    [[nodiscard]] static std::string IDFV();
    /// "4" on a tablet, "0" on everything else.
    [[nodiscard]] static std::string terminalMeta();
    /// Always false.
    [[nodiscard]] static bool isPad() noexcept { return false; }

    /// Free bytes on the volume of /var, those kept for the superuser included; 0 if that cannot be told.
    [[nodiscard]] static std::uint64_t freeSpace();
    /// Whether freeSpace() is 0.
    [[nodiscard]] static bool isSpaceFull();

    /// Whether the hardware is of a generation with a fingerprint or face sensor, by its name alone: false on
    /// a desktop.
    [[nodiscard]] static bool isSupportBiometric();
    /// Whether the machine's sensor recognises faces. Asks the system, for a fraction of a second at most.
    [[nodiscard]] static bool isSupportFaceID();

    /// Always empty, as is countryCode().
    [[nodiscard]] static std::string carrierName();
    [[nodiscard]] static std::string countryCode();

    // The torch is the light beside the camera. Without one, the three that switch it put an error of the
    // domain above into `error`, unless that is null. What the system refuses is put there as an
    // NSPOSIXErrorDomain error; where nothing is wrong, `error` stays as it was.

    [[nodiscard]] static bool hasTorch();
    /// From 0 to 1; 0 without a torch.
    [[nodiscard]] static float torchLevel();
    [[nodiscard]] static bool isTorchOn();
    /// Sets it to a level from 0 (off) to 1; one beyond counts as the nearest. Whether it was accepted.
    static bool setTorchOnWithLevel(float level, std::shared_ptr<NSError>* error = nullptr);
    /// At full level. Whether there is a torch, even if switching it was refused.
    static bool turnOnTorch(std::shared_ptr<NSError>* error = nullptr);
    /// Whether there is a torch, even if switching it was refused.
    static bool turnOffTorch(std::shared_ptr<NSError>* error = nullptr);
};

}  // namespace kx
