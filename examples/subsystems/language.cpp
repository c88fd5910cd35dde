// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Localization/NSButton_LocalizedKey.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSTextField.h>

using namespace kx;

const char* side(NSTextAlignment alignment) {
    return alignment == NSTextAlignment::Right ? "right" : "left";
}

void showIn(const char* language) {
    KXLocalizationUtils::setSelectLanguage(language);
    const auto field = make<NSTextField>();
    field->setAlignment(
        NSTextAlignment::Left);  // as in a left-to-right language: it is mirrored where it must be
    const auto button = make<NSButton>();
    NSButton_LocalizedKey::setLocalizedKey(button, "button.save");
    std::printf("%s: %s, on the %s; %s; %s\n", KXLocalizationUtils::selectLanguage().c_str(),
                button->title().c_str(), side(field->alignment()),
                localized("note").c_str(),      // in English alone
                localized("no.such").c_str());  // nowhere
}

int main() {
    for (const char* language : {"fr", "ar", "xx"}) showIn(language);
    KXLocalizationUtils::setSelectLanguage("auto");  // follows the system from now on
    std::printf("auto: %s\n", KXLocalizationUtils::selectLanguage().c_str());
}
