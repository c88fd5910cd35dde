// SPDX-License-Identifier: MIT

#include "pages/ApplicationPage.h"

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>

namespace gallery {

using namespace kx;

namespace {

constexpr const char* kSelectionKeys[] = {
    "ar", "bg", "cs", "da", "de", "el", "en", "es",      "es_419",  "fi",    "fr", "he",
    "hu", "it", "ja", "ko", "ms", "nb", "nl", "pl",      "pt",      "pt_BR", "ro", "ru",
    "sk", "sr", "sv", "th", "tr", "uk", "vi", "zh_Hans", "zh_Hant", "auto"};

std::string orNone(const std::optional<std::string>& value) {
    return value.value_or(text("general.none"));
}

std::string version() {
    const Value info = NSBundle::mainBundle()->infoDictionary();
    const auto found = info["CFBundleShortVersionString"].asString();
    return found ? std::string(*found) : text("general.none");
}

/// "es_419 → es_MX" for every key, in rows.
void addAnswers(Column& column) {
    std::vector<std::shared_ptr<NSView>> cells;
    for (const char* key : kSelectionKeys) {
        const auto answer = KXAppUtils::getCloudLocaleBySelectedCountryBykey(key);
        cells.push_back(label(std::string(key) + " \u2192 " + orNone(answer)));
    }
    column.grid(cells, 4, 22, 2);
}

}  // namespace

void ApplicationPage::build(Column& column, Gallery&) {
    column.title(text("application.title"));
    column.paragraph(text("application.explanation"));
    column.space(12);
    column.pair(text("application.name"), orNone(KXAppUtils::appName()));
    column.pair(text("application.identifier"), orNone(KXAppUtils::appPackageName()));
    column.pair(text("application.version"), version());
    column.pair(text("application.orvik"), text(KXAppUtils::isOrvikApp() ? "general.yes" : "general.no"));
    column.pair(text("application.locale"), KXAppUtils::currentLocale());
    column.pair(text("application.cloud_locale"), KXAppUtils::currentCloudLocale());
    const char* arrow = KXLocalizationUtils::isRTL() ? " \u2190 " : " \u2192 ";
    column.caption(text("application.selection_key") + arrow + text("application.answer"));
    addAnswers(column);
}

}  // namespace gallery
