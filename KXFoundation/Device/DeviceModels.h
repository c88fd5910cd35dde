// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>

/// The names under which devices are sold, by the hardware identifier that their kernel reports: the one
/// place of this table, as the makers' product lists have it at the end of 2019. An identifier stands in it
/// once.
namespace kx::devices {

struct Model {
    std::string_view identifier;
    std::string_view name;
};

inline constexpr std::array<Model, 98> kModels = {{
    {"iPhone1,1", "iPhone 1G"},
    {"iPhone1,2", "iPhone 3G"},
    {"iPhone2,1", "iPhone 3GS"},
    {"iPhone3,1", "iPhone 4 (GSM)"},
    {"iPhone3,2", "iPhone 4 (GSM)"},
    {"iPhone3,3", "iPhone 4 (CDMA)"},
    {"iPhone4,1", "iPhone 4S"},
    {"iPhone5,1", "iPhone 5 (GSM)"},
    {"iPhone5,2", "iPhone 5 (CDMA)"},
    {"iPhone5,3", "iPhone 5c"},
    {"iPhone5,4", "iPhone 5c"},
    {"iPhone6,1", "iPhone 5s"},
    {"iPhone6,2", "iPhone 5s"},
    {"iPhone7,1", "iPhone 6 Plus"},
    {"iPhone7,2", "iPhone 6"},
    {"iPhone8,1", "iPhone 6s"},
    {"iPhone8,2", "iPhone 6s Plus"},
    {"iPhone8,4", "iPhone SE"},
    {"iPhone9,1", "iPhone 7"},
    {"iPhone9,3", "iPhone 7"},
    {"iPhone9,2", "iPhone 7 Plus"},
    {"iPhone9,4", "iPhone 7 Plus"},
    {"iPhone10,1", "iPhone 8"},
    {"iPhone10,4", "iPhone 8"},
    {"iPhone10,2", "iPhone 8 Plus"},
    {"iPhone10,5", "iPhone 8 Plus"},
    {"iPhone10,3", "iPhone X"},
    {"iPhone10,6", "iPhone X"},
    {"iPhone11,2", "iPhone XS"},
    {"iPhone11,4", "iPhone XS Max"},
    {"iPhone11,6", "iPhone XS Max"},
    {"iPhone11,8", "iPhone XR"},
    {"iPhone12,1", "iPhone 11"},
    {"iPhone12,3", "iPhone 11 Pro"},
    {"iPhone12,5", "iPhone 11 Pro Max"},
    {"iPod1,1", "iPod Touch 1G"},
    {"iPod2,1", "iPod Touch 2G"},
    {"iPod3,1", "iPod Touch 3G"},
    {"iPod4,1", "iPod Touch 4G"},
    {"iPod5,1", "iPod Touch 5G"},
    {"iPod7,1", "iPod Touch 6G"},
    {"iPod9,1", "iPod Touch 7G"},
    {"iPad1,1", "iPad"},
    {"iPad1,2", "iPad 3G"},
    {"iPad2,1", "iPad 2 (WiFi)"},
    {"iPad2,4", "iPad 2 (WiFi)"},
    {"iPad2,2", "iPad 2 (GSM)"},
    {"iPad2,3", "iPad 2 (CDMA)"},
    {"iPad2,5", "iPad Mini (WiFi)"},
    {"iPad2,6", "iPad Mini (GSM)"},
    {"iPad2,7", "iPad Mini (CDMA)"},
    {"iPad3,1", "iPad 3 (WiFi)"},
    {"iPad3,2", "iPad 3 (CDMA)"},
    {"iPad3,3", "iPad 3 (GSM)"},
    {"iPad3,4", "iPad 4 (WiFi)"},
    {"iPad3,5", "iPad 4 (GSM)"},
    {"iPad3,6", "iPad 4 (CDMA)"},
    {"iPad4,1", "iPad Air (WiFi)"},
    {"iPad4,2", "iPad Air (GSM)"},
    {"iPad4,3", "iPad Air (CDMA)"},
    {"iPad4,4", "iPad Mini 2 (WiFi)"},
    {"iPad4,5", "iPad Mini 2 (Cellular)"},
    {"iPad4,6", "iPad Mini 2 (Cellular)"},
    {"iPad4,7", "iPad Mini 3 (WiFi)"},
    {"iPad4,8", "iPad Mini 3 (Cellular)"},
    {"iPad4,9", "iPad Mini 3 (Cellular)"},
    {"iPad5,1", "iPad Mini 4 (WiFi)"},
    {"iPad5,2", "iPad Mini 4 (Cellular)"},
    {"iPad5,3", "iPad Air 2 (WiFi)"},
    {"iPad5,4", "iPad Air 2 (Cellular)"},
    {"iPad6,3", "iPad Pro 9.7-inch (WiFi)"},
    {"iPad6,4", "iPad Pro 9.7-inch (Cellular)"},
    {"iPad6,7", "iPad Pro 12.9-inch (WiFi)"},
    {"iPad6,8", "iPad Pro 12.9-inch (Cellular)"},
    {"iPad6,11", "iPad 5 (WiFi)"},
    {"iPad6,12", "iPad 5 (Cellular)"},
    {"iPad7,1", "iPad Pro 12.9-inch 2 (WiFi)"},
    {"iPad7,2", "iPad Pro 12.9-inch 2 (Cellular)"},
    {"iPad7,3", "iPad Pro 10.5-inch (WiFi)"},
    {"iPad7,4", "iPad Pro 10.5-inch (Cellular)"},
    {"iPad7,5", "iPad 6 (WiFi)"},
    {"iPad7,6", "iPad 6 (Cellular)"},
    {"iPad7,11", "iPad 7 (WiFi)"},
    {"iPad7,12", "iPad 7 (Cellular)"},
    {"iPad8,1", "iPad Pro 11-inch (WiFi)"},
    {"iPad8,2", "iPad Pro 11-inch (WiFi, 1TB)"},
    {"iPad8,3", "iPad Pro 11-inch (Cellular)"},
    {"iPad8,4", "iPad Pro 11-inch (Cellular, 1TB)"},
    {"iPad8,5", "iPad Pro 12.9-inch 3 (WiFi)"},
    {"iPad8,6", "iPad Pro 12.9-inch 3 (WiFi, 1TB)"},
    {"iPad8,7", "iPad Pro 12.9-inch 3 (Cellular)"},
    {"iPad8,8", "iPad Pro 12.9-inch 3 (Cellular, 1TB)"},
    {"iPad11,1", "iPad Mini 5 (WiFi)"},
    {"iPad11,2", "iPad Mini 5 (Cellular)"},
    {"iPad11,3", "iPad Air 3 (WiFi)"},
    {"iPad11,4", "iPad Air 3 (Cellular)"},
    {"i386", "iPhone Simulator"},
    {"x86_64", "iPhone Simulator"},
}};

/// The name of the model, or the identifier itself if the table does not know it.
[[nodiscard]] constexpr std::string_view modelName(std::string_view identifier) noexcept {
    for (const Model& model : kModels) {
        if (model.identifier == identifier) return model.name;
    }
    return identifier;
}

}  // namespace kx::devices
