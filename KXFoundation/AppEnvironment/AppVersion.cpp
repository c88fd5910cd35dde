// SPDX-License-Identifier: MIT

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/NumericCompare.h>

namespace kx {

namespace {

std::optional<std::string> information(std::string_view key) {
    const Value dictionary = NSBundle::mainBundle()->infoDictionary();
    const auto text = dictionary[key].asString();
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

}  // namespace

std::optional<std::string> KXAppUtils::currentAppVersion() {
    return information("CFBundleShortVersionString");
}

std::optional<std::string> KXAppUtils::currentAppVersionCode() {
    return information("CFBundleVersion");
}

bool KXAppUtils::isAppVersionOlderThan(std::optional<std::string_view> version,
                                       std::optional<std::string_view> other) noexcept {
    return version && other && numericCompare(*version, *other) < 0;
}

}  // namespace kx
