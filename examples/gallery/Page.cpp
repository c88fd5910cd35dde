// SPDX-License-Identifier: MIT

#include "Page.h"

#include "pages/AlbumPage.h"
#include "pages/AnimationPage.h"
#include "pages/ApplicationPage.h"
#include "pages/ButtonsPage.h"
#include "pages/CachePage.h"
#include "pages/CalendarPage.h"
#include "pages/ColoursPage.h"
#include "pages/DevicePage.h"
#include "pages/ImageCachePage.h"
#include "pages/KeychainPage.h"
#include "pages/LanguagePage.h"
#include "pages/LinksPage.h"
#include "pages/LoadingPage.h"
#include "pages/MaskPage.h"
#include "pages/ObjectsPage.h"
#include "pages/OncePage.h"
#include "pages/PicturesPage.h"
#include "pages/RequestsPage.h"
#include "pages/ScreenPage.h"
#include "pages/TextPage.h"
#include "pages/TimePage.h"
#include "pages/ToastPage.h"

namespace gallery {

namespace {

template <class P>
std::unique_ptr<Page> makePage() {
    return std::make_unique<P>();
}

constexpr PageEntry kPages[] = {
    {"language", "page.language", makePage<LanguagePage>},
    {"objects", "page.objects", makePage<ObjectsPage>},
    {"application", "page.application", makePage<ApplicationPage>},
    {"requests", "page.requests", makePage<RequestsPage>},
    {"cache", "page.cache", makePage<CachePage>},
    {"links", "page.links", makePage<LinksPage>},
    {"time", "page.time", makePage<TimePage>},
    {"calendar", "page.calendar", makePage<CalendarPage>},
    {"device", "page.device", makePage<DevicePage>},
    {"keychain", "page.keychain", makePage<KeychainPage>},
    {"text", "page.text", makePage<TextPage>},
    {"album", "page.album", makePage<AlbumPage>},
    {"animation", "page.animation", makePage<AnimationPage>},
    {"pictures", "page.pictures", makePage<PicturesPage>},
    {"image-cache", "page.image_cache", makePage<ImageCachePage>},
    {"colours", "page.colours", makePage<ColoursPage>},
    {"toast", "page.toast", makePage<ToastPage>},
    {"mask", "page.mask", makePage<MaskPage>},
    {"loading", "page.loading", makePage<LoadingPage>},
    {"buttons", "page.buttons", makePage<ButtonsPage>},
    {"screen", "page.screen", makePage<ScreenPage>},
    {"once", "page.once", makePage<OncePage>},
};

}  // namespace

std::span<const PageEntry> pages() {
    return kPages;
}

}  // namespace gallery
