#include "Page.h"

#include "pages/AlbumPage.h"
#include "pages/AnimationPage.h"
#include "pages/ApplicationPage.h"
#include "pages/ColoursPage.h"
#include "pages/KeychainPage.h"
#include "pages/LanguagePage.h"
#include "pages/ObjectsPage.h"
#include "pages/PicturesPage.h"
#include "pages/RequestsPage.h"
#include "pages/TextPage.h"

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
    {"keychain", "page.keychain", makePage<KeychainPage>},
    {"text", "page.text", makePage<TextPage>},
    {"album", "page.album", makePage<AlbumPage>},
    {"animation", "page.animation", makePage<AnimationPage>},
    {"pictures", "page.pictures", makePage<PicturesPage>},
    {"colours", "page.colours", makePage<ColoursPage>},
};

}  // namespace

std::span<const PageEntry> pages() {
    return kPages;
}

}  // namespace gallery
