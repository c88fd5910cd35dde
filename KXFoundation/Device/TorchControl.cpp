// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Device/KXDeviceUtils.h>
#include <KXFoundation/Platform/Foundation/NSError.h>
#include <KXFoundation/Platform/Services/Torch.h>

namespace kx {

constinit std::string_view KXFoundationTorchErrorDomain = "KXFoundationTorchErrorDomain";
constinit std::int64_t KXFoundationUnsupportTorchErrorCode = -1;

namespace {

using ErrorSlot = std::shared_ptr<NSError>*;

Torch& torch() {
    return Torch::slot().current();
}

/// What came of switching the torch.
struct Switched {
    bool torchIsThere;
    bool accepted;
};

Switched switchTorch(float level, ErrorSlot error) {
    if (!KXDeviceUtils::hasTorch()) {
        if (error)
            *error =
                NSError::errorWithDomain(KXFoundationTorchErrorDomain, KXFoundationUnsupportTorchErrorCode);
        return {false, false};
    }
    const auto done = torch().setLevel(level);
    if (!done && error) *error = NSError::errorWithError(done.error());
    return {true, done.ok()};
}

}  // namespace

bool KXDeviceUtils::hasTorch() {
    return torch().name().has_value();
}

float KXDeviceUtils::torchLevel() {
    const auto level = torch().level();
    return level ? *level : 0;
}

bool KXDeviceUtils::isTorchOn() {
    return torchLevel() > 0;
}

bool KXDeviceUtils::setTorchOnWithLevel(float level, std::shared_ptr<NSError>* error) {
    return switchTorch(std::clamp(level, 0.0F, 1.0F), error).accepted;
}

bool KXDeviceUtils::turnOnTorch(std::shared_ptr<NSError>* error) {
    return switchTorch(1, error).torchIsThere;
}

bool KXDeviceUtils::turnOffTorch(std::shared_ptr<NSError>* error) {
    return switchTorch(0, error).torchIsThere;
}

}  // namespace kx
