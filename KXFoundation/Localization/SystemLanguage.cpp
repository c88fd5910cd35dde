// SPDX-License-Identifier: MIT

// The language that the system asks for, out of those that the application has.
#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/LanguageSteps.h>
#include <KXFoundation/Localization/LanguageTables.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>

namespace kx {

namespace {

using namespace languages;

/// The one language that is examined.
std::string firstCandidate() {
    std::vector<std::string> preferred = NSLocale::preferredLanguages();
    if (!preferred.empty()) return std::move(preferred.front());
    return NSLocale::currentLocale()->languageCode().value_or(std::string(kDefault));
}

std::string derivedLanguage() {
    const LanguageSet& supported = KXLocalizationUtils::supportLanguages();
    std::string candidate = firstCandidate();
    if (!supported.contains(candidate) && candidate != kBrazilian) {
        const auto language = languageFor(kSystemLanguages, &SystemLanguage::derivedPrefix, candidate,
                                          KXAppUtils::isOrvikApp());
        if (language) candidate = *language;
    }
    return supported.contains(candidate) ? candidate : std::string(kUnsupported);
}

}  // namespace

const std::string& languages::currentUse() {
    if (!lCurrentUseLanguage) lCurrentUseLanguage = derivedLanguage();
    return *lCurrentUseLanguage;
}

std::string_view languages::currentPreferred() {
    const std::string& language = currentUse();
    return KXLocalizationUtils::supportLanguages().contains(language) ? std::string_view(language) : kDefault;
}

const LanguageSet& KXLocalizationUtils::supportLanguages() {
    if (!lSupportLanguageSet) {
        const std::vector<std::string> names = NSBundle::mainBundle()->localizations();
        lSupportLanguageSet.emplace(names.begin(), names.end());
    }
    return *lSupportLanguageSet;
}

std::string KXLocalizationUtils::currentUseLanguage() {
    return currentUse();
}

bool KXLocalizationUtils::isCurrentUseLanguageSupported() {
    return supportLanguages().contains(currentUse());
}

std::string KXLocalizationUtils::currentPreferredLanguage() {
    return std::string(currentPreferred());
}

std::string KXLocalizationUtils::defaultLanguage() {
    return std::string(kDefault);
}

}  // namespace kx
