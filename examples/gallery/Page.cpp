#include "Page.h"

#include "pages/ApplicationPage.h"
#include "pages/CachePage.h"
#include "pages/KeychainPage.h"
#include "pages/LanguagePage.h"
#include "pages/ObjectsPage.h"
#include "pages/RequestsPage.h"

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
    {"keychain", "page.keychain", makePage<KeychainPage>},
};

}  // namespace

std::span<const PageEntry> pages() {
    return kPages;
}

}  // namespace gallery
