// SPDX-License-Identifier: MIT

#include <KXFoundation/AppEnvironment/AppLinks.h>
#include <KXFoundation/AppEnvironment/FeedbackCodes.h>
#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Localization/KXLocalizationUtils.h>

namespace kx {

std::string KXAppUtils::getFeedbackUrl() {
    const AppLinks links = appLinks();
    if (isOrvikApp()) return links.orvikFeedbackAddress + "?app=" + links.productIdentifier + "&darkmode=1";
    return links.feedbackAddress + "?locale=" + getFeedbackLanguageCode();
}

std::string KXAppUtils::getFeedbackLanguageCode() {
    const feedback::Codes& codes = feedback::codesOf(KXLocalizationUtils::selectLanguage());
    return std::string(isOrvikApp() ? codes.orvikPage : codes.page);
}

std::string KXAppUtils::getORLOToolLanguageCode() {
    const feedback::Codes& codes = feedback::codesOf(KXLocalizationUtils::selectLanguage());
    return std::string(isOrvikApp() ? codes.orvikTool : codes.tool);
}

}  // namespace kx
