// SPDX-License-Identifier: MIT

#include "CrateCounter.h"

#include <string>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/LiveLanguage.h>
#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>

using namespace kx;

CrateCounter::CrateCounter()
    : window(make<NSWindow>(NSRect(0, 0, 280, 190))),
      greeting(make<NSTextField>()),
      crates(make<NSTextField>()),
      name(make<NSTextField>()),
      unload(make<NSButton>()),
      language(make<NSButton>()) {
    greeting->setEditable(false);
    crates->setEditable(false);
    unload->setAction([this](NSControl&) {
        ++count_;
        LiveLanguage::refresh(crates);
    });
    language->setTitle("English / عربي");
    language->setAction([](NSControl&) {
        KXLocalizationUtils::setSelectLanguage(KXLocalizationUtils::isRTL() ? "en" : "ar");
    });

    LiveLanguage::bind(window, "title");
    LiveLanguage::bind(greeting, "greeting");
    LiveLanguage::bind(crates, [this] { return localized("crates") + std::to_string(count_); });
    LiveLanguage::bindPlaceholder(name, "your name");
    LiveLanguage::bind(unload, "unload");
    LiveLanguage::exempt(language);  // each language in its own letters

    place(greeting, 16, 240);
    place(crates, 44, 240);
    place(name, 72, 160);
    place(unload, 108, 100);
    place(language, 144, 140);
    window->makeKeyAndOrderFront();
}

/// Twenty points from where reading begins.
void CrateCounter::place(const std::shared_ptr<NSView>& view, double top, double width) {
    const auto content = window->contentView();
    content->addSubview(view);
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    using enum NSLayoutAttribute;
    NSLayoutConstraint::activateConstraints({
        NSLayoutConstraint::constraintWithItem(view, Leading, content, Leading, 20),
        NSLayoutConstraint::constraintWithItem(view, Top, content, Top, top),
        NSLayoutConstraint::constraintWithItem(view, Width, width),
    });
}
