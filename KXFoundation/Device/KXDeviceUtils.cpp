// SPDX-License-Identifier: MIT

#include <KXFoundation/Device/DeviceModels.h>
#include <KXFoundation/Device/KXDeviceUtils.h>
#include <KXFoundation/Platform/Foundation/NSScanner.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Services/Biometrics.h>
#include <KXFoundation/Platform/Services/Machine.h>

namespace kx {

namespace {

/// A service that must be started first takes 100 to 200 ms.
constexpr std::chrono::milliseconds kBiometricsPatience{400};

constexpr std::string_view kPhone = "iPhone";
constexpr std::string_view kTablet = "iPad";

std::string hardwareIdentifier() {
    return Machine::slot().current().hardwareIdentifier();
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != text.npos;
}

/// The numbers in "iPad4,7", after a name of that many characters.
struct Generation {
    std::int32_t major = 0, minor = 0;

    Generation(std::string_view identifier, std::size_t nameLength) {
        const std::string_view numbers = identifier.substr(nameLength);
        const std::size_t comma = numbers.find(',');
        major = intValue(numbers.substr(0, comma));
        if (comma != numbers.npos) minor = intValue(numbers.substr(comma + 1));
    }
};

}  // namespace

std::string KXDeviceUtils::deviceModel() {
    return std::string(devices::modelName(hardwareIdentifier()));
}

std::string KXDeviceUtils::IDFV() {
    constexpr std::string_view kKey = "IDFV";
    auto stored = load<std::string>(kKey);
    if (stored && !stored->empty()) return *std::move(stored);
    save("", kKey);
    return {};
}

std::string KXDeviceUtils::terminalMeta() {
    return contains(hardwareIdentifier(), kTablet) ? "4" : "0";
}

std::uint64_t KXDeviceUtils::freeSpace() {
    const auto room = Machine::slot().current().roomAt("/var");
    if (room) return room->freeBlocks * room->blockSize;
    logError("free space", room.error());
    return 0;
}

bool KXDeviceUtils::isSpaceFull() {
    return freeSpace() == 0;
}

bool KXDeviceUtils::isSupportBiometric() {
    const std::string identifier = hardwareIdentifier();
    if (contains(identifier, kPhone)) return Generation(identifier, kPhone.size()).major >= 6;
    if (!contains(identifier, kTablet)) return false;
    const Generation generation(identifier, kTablet.size());
    return generation.major >= 5 || (generation.major == 4 && generation.minor >= 7);
}

bool KXDeviceUtils::isSupportFaceID() {
    const auto type = Biometrics::slot().current().type(kBiometricsPatience);
    return type && *type == BiometryType::Face;  // a machine that cannot tell has none
}

std::string KXDeviceUtils::carrierName() {
    return {};
}

std::string KXDeviceUtils::countryCode() {
    return {};
}

}  // namespace kx
