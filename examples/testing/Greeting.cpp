// SPDX-License-Identifier: MIT

#include "Greeting.h"

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/NSButton_LocalizedKey.h>

using namespace kx;

Greeting::Greeting() : window(make<NSWindow>(NSRect(0, 0, 240, 100))) {
    makeControls();
    window->makeKeyAndOrderFront();
}

void Greeting::makeControls() {
    label = make<NSTextField>(NSRect(20, 16, 200, 24));
    label->setEditable(false);
    label->setAlignment(NSTextAlignment::Left);
    label->setStringValue(KXLocalizationUtils::localizedStringForKey("greeting"));

    button = make<NSButton>(NSRect(60, 56, 120, 28));
    NSButton_LocalizedKey::setLocalizedKey(button, "other language");
    button->setAction([this](NSControl&) {
        KXLocalizationUtils::setSelectLanguage(KXLocalizationUtils::isRTL() ? "en" : "ar");
        makeControls();
    });

    const auto content = make<NSView>();
    content->addSubview(label);
    content->addSubview(button);
    window->setContentView(content);
}
