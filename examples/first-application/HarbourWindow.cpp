// SPDX-License-Identifier: MIT

#include "HarbourWindow.h"

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/LiveLanguage.h>
#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Media/NSImage_Mask.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/UI/KXToastView.h>

using namespace kx;

HarbourWindow::HarbourWindow() : window(make<NSWindow>(NSRect(0, 0, 360, 330))) {
    const auto caches = baseDirectory(BaseDirectory::Cache);  // ~/.cache, absent without a home
    if (caches) cache_ = KXImageCache::initWithPath(*caches + "/org.example.harbour");
    title = make<NSTextField>(NSRect(20, 16, 320, 24));
    title->setEditable(false);
    title->setAlignment(NSTextAlignment::Left);  // on the right in Arabic

    picture = make<NSImageView>(NSRect(20, 48, 320, 214));
    showPicture();

    save = make<NSButton>(NSRect(20, 280, 150, 30));
    save->setDefaultButton(true);
    save->setAction(
        [](NSControl&) { KXToastView::initWithTitle(localized("saved"), nullptr)->showWithTimeout(3); });

    language = make<NSButton>(NSRect(190, 280, 150, 30));
    language->setAction([this](NSControl&) {
        const std::string now = KXLocalizationUtils::selectLanguage();
        KXLocalizationUtils::setSelectLanguage(now == "fr" ? "ar" : now == "ar" ? "en" : "fr");
    });

    const auto content = make<NSView>();
    content->addSubview(title);
    content->addSubview(picture);
    content->addSubview(save);
    content->addSubview(language);
    window->setContentView(content);

    LiveLanguage::bind(window, "title");  // these follow the choice from now on
    LiveLanguage::bind(title, "title");
    LiveLanguage::bind(save, "save");
    LiveLanguage::bind(language, "language");
    window->makeKeyAndOrderFront();
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
