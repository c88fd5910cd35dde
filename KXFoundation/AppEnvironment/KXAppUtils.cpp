// SPDX-License-Identifier: MIT

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>

namespace kx {

namespace {

constexpr std::string_view kDisplayName = "CFBundleDisplayName";

}  // namespace

std::optional<std::string> KXAppUtils::appName() {
    const auto bundle = NSBundle::mainBundle();
    const Value information = bundle->infoDictionary();
    if (const auto name = information[kDisplayName].asString()) return std::string(*name);
    return bundle->bundleIdentifier();
}

std::optional<std::string> KXAppUtils::appPackageName() {
    return NSBundle::mainBundle()->bundleIdentifier();
}

bool KXAppUtils::isOrvikApp() {
    return appName() == orvikAppName;
}

std::string KXAppUtils::currentLocale() {
    const auto locale = NSLocale::currentLocale();
    const std::string language = locale->languageCode().value_or("en");
    const auto region = locale->countryCode();
    return region ? language + "_" + *region : language;
}

}  // namespace kx
