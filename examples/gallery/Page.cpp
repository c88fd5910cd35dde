#include "Page.h"

#include "pages/LanguagePage.h"

namespace gallery {

namespace {

template <class P>
std::unique_ptr<Page> makePage() {
    return std::make_unique<P>();
}

constexpr PageEntry kPages[] = {
    {"language", "page.language", makePage<LanguagePage>},
};

}  // namespace

std::span<const PageEntry> pages() { return kPages; }

}  // namespace gallery
