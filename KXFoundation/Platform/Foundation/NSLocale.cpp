// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Foundation/NSLocale.h>

namespace kx {

namespace {

bool isLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

bool isScript(std::string_view part) noexcept {
    return part.size() == 4 && std::ranges::all_of(part, isLetter);
}

bool isRegion(std::string_view part) noexcept {
    return (part.size() == 2 && std::ranges::all_of(part, isLetter)) ||
           (part.size() == 3 && std::ranges::all_of(part, isDigit));
}

/// Takes the part before the next underscore off an identifier.
std::string_view takePart(std::string_view& identifier) noexcept {
    const std::size_t end = std::min(identifier.find('_'), identifier.size());
    const std::string_view part = identifier.substr(0, end);
    identifier.remove_prefix(std::min(end + 1, identifier.size()));
    return part;
}

std::optional<std::string> present(std::string_view part, bool isOne) {
    if (!isOne) return std::nullopt;
    return std::string(part);
}

}  // namespace

PortSlot<LocaleSettings>& LocaleSettings::slot() {
    static constinit PortSlot<LocaleSettings> slot;
    return slot;
}

bool NSLocale::init(std::string_view identifier) {
    identifier_ = identifier;
    std::ranges::replace(identifier_, '-', '_');
    return Super::init();
}

std::vector<std::string> NSLocale::preferredLanguages() {
    return LocaleSettings::slot().current().preferredLanguages();
}

std::uint64_t NSLocale::settingsVersion() noexcept {
    return portGeneration() << 32 | LocaleSettings::slot().current().version();
}

std::shared_ptr<NSLocale> NSLocale::currentLocale() {
    auto locale = make<NSLocale>(LocaleSettings::slot().current().localeIdentifier());
    locale->followsClockFormat_ = true;
    return locale;
}

std::shared_ptr<NSLocale> NSLocale::localeWithLocaleIdentifier(std::string_view identifier) {
    return make<NSLocale>(identifier);
}

std::optional<std::string> NSLocale::languageCode() const {
    std::string_view rest = identifier_;
    const std::string_view part = takePart(rest);
    return present(part, part.size() >= 2 && part.size() <= 8 && std::ranges::all_of(part, isLetter));
}

std::optional<std::string> NSLocale::countryCode() const {
    std::string_view rest = identifier_;
    (void)takePart(rest);
    std::string_view part = takePart(rest);
    if (isScript(part)) part = takePart(rest);
    return present(part, isRegion(part));
}

}  // namespace kx
