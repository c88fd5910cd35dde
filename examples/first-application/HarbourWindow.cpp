// SPDX-License-Identifier: MIT

#include "HarbourWindow.h"

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Localization/NSButton_LocalizedKey.h>
#include <KXFoundation/Media/NSImage_Mask.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/UI/KXToastView.h>

using namespace kx;

HarbourWindow::HarbourWindow() : window(make<NSWindow>(NSRect(0, 0, 360, 330))) {
    const auto caches = baseDirectory(BaseDirectory::Cache);  // ~/.cache, absent without a home
    if (caches) cache_ = KXImageCache::initWithPath(*caches + "/org.example.harbour");
    makeViews();
    window->makeKeyAndOrderFront();
}

// A language that is chosen changes no view that is there: they are made anew.
void HarbourWindow::makeViews() {
    title = make<NSTextField>(NSRect(20, 16, 320, 24));
    title->setEditable(false);
    title->setAlignment(NSTextAlignment::Left);  // on the right in Arabic
    title->setStringValue(localized("title"));

    picture = make<NSImageView>(NSRect(20, 48, 320, 214));
    showPicture();

    save = make<NSButton>(NSRect(20, 280, 150, 30));
    save->setDefaultButton(true);
    NSButton_LocalizedKey::setLocalizedKey(save, "save");
    save->setAction(
        [](NSControl&) { KXToastView::initWithTitle(localized("saved"), nullptr)->showWithTimeout(3); });

    language = make<NSButton>(NSRect(190, 280, 150, 30));
    NSButton_LocalizedKey::setLocalizedKey(language, "language");
    language->setAction([this](NSControl&) {
        const std::string now = KXLocalizationUtils::selectLanguage();
        KXLocalizationUtils::setSelectLanguage(now == "fr" ? "ar" : now == "ar" ? "en" : "fr");
        makeViews();
    });

    const auto content = make<NSView>();
    content->addSubview(title);
    content->addSubview(picture);
    content->addSubview(save);
    content->addSubview(language);
    window->setTitle(localized("title"));
    window->setContentView(content);
}

// The first run makes the small picture out of the large one; later ones read it back.
void HarbourWindow::showPicture() {
    auto image = cache_ ? cache_->getImageForKey("harbour") : nullptr;
    if (!image) {
        const auto path = NSBundle::mainBundle()->pathForResource("harbour", "jpg");
        image = NSImage_Mask::fixImageSizeWithWidth(NSImage::initWithContentsOfFile(path), 320);
        if (cache_) cache_->setImage(image, "harbour");
    }
    picture->setImage(image);
}
