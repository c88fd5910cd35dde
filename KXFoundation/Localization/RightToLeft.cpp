// SPDX-License-Identifier: MIT

// Whether the application is shown right to left.
#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/LanguageSteps.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

constexpr std::string_view kArabic = "ar";

/// The answer while there is no language to judge.
struct LastAnswer {
    bool isCurrentLanguageRTL = false;
};

}  // namespace

const LanguageSet& KXLocalizationUtils::rtlLanguageSet() {
    if (!kx::rtlLanguageSet) kx::rtlLanguageSet.emplace({std::string(kArabic)});
    return *kx::rtlLanguageSet;
}

bool KXLocalizationUtils::isRTL() {
    static constinit ProcessState<LastAnswer> state;
    bool& answer = state.get().isCurrentLanguageRTL;
    languages::reloadSelection();
    const auto& selection = kx::selectLanguage;
    const std::string& language = selection && !selection->empty() ? *selection : languages::currentUse();
    if (!language.empty()) answer = rtlLanguageSet().contains(language);
    return answer;
}

bool KXLocalizationUtils::isSystemRTL() {
    return languages::currentUse() == kArabic;
}

}  // namespace kx
