// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Localization/NSButton_LocalizedKey.h>
#include <KXFoundation/Platform/Views/NSButton.h>

using namespace kx;

/// kx-strings has compared each translation's arguments with the English text's.
std::string freeBerths(int count, const char* harbour) {
    char text[200];
    std::snprintf(text, sizeof text, localized("berths.free").c_str(), count, harbour);
    return text;
}

int main() {
    for (const char* language : {"en", "fr", "ar", "pt_BR"}) {
        KXLocalizationUtils::setSelectLanguage(language);
        const auto save = make<NSButton>();
        NSButton_LocalizedKey::setLocalizedKey(save, "toolbar.save");
        std::printf("%s%s: [%s] %s\n", KXLocalizationUtils::selectLanguage().c_str(),
                    KXLocalizationUtils::isRTL() ? ", right to left" : "", save->title().c_str(),
                    freeBerths(12, "Nice").c_str());
    }
    std::printf("%s\n", localized("about.text").c_str());
}
