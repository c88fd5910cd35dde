// SPDX-License-Identifier: MIT

#include "pages/LanguagePage.h"

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/NSButton_LocalizedKey.h>
#include <KXFoundation/Localization/NSTextField_LocalizedKey.h>
#include <KXFoundation/Localization/NSTextView_LocalizedKey.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSCollectionView.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>

#include "Gallery.h"

namespace gallery {

using namespace kx;

namespace {

constexpr struct {
    std::string_view code;
    std::string_view name;  // in the language itself
} kLanguages[] = {
    {"ar", "العربية"},
    {"de", "Deutsch"},
    {"en", "English"},
    {"es", "Español"},
    {"es-419", "Español (Latam.)"},
    {"fr", "Français"},
    {"it", "Italiano"},
    {"ja", "日本語"},
    {"ko", "한국어"},
    {"pt", "Português"},
    {"pt-BR", "Português (Brasil)"},
    {"ru", "Русский"},
    {"zh-Hans", "简体中文"},
    {"zh-Hant", "繁體中文"},
};

/// Choosing is one call. No notification follows, and what was bound is not bound for ever: the page is made
/// anew.
std::shared_ptr<NSButton> languageButton(std::string_view code, std::string_view title, Gallery& gallery) {
    auto button = make<NSButton>();
    button->setTitle(title);
    button->setAction([code = std::string(code), &gallery](NSControl&) {
        KXLocalizationUtils::setSelectLanguage(code);
        gallery.rebuild();
    });
    const bool isChosen =
        code == kAuto ? selectLog == kFollowSystem : selectLog != kFollowSystem && selectLanguage == code;
    button->setDefaultButton(isChosen);
    return button;
}

std::shared_ptr<NSCollectionView> flow(const std::vector<std::shared_ptr<NSView>>& items, NSSize itemSize,
                                       double width) {
    auto layout = make<NSCollectionViewFlowLayout>();  // asks isRTL() whether to mirror its rows
    layout->setItemSize(itemSize);
    layout->setMinimumInteritemSpacing(8);
    layout->setMinimumLineSpacing(8);
    auto view = make<NSCollectionView>();
    view->setFrame({0, 0, width, layout->contentHeight(items.size(), width)});
    view->setCollectionViewLayout(layout);
    view->setItemViews(items);
    return view;
}

void addPicker(Column& column, Gallery& gallery) {
    column.caption(text("language.label"));
    std::vector<std::shared_ptr<NSView>> buttons{
        languageButton(kAuto, text("language.follow_system"), gallery)};
    for (const auto& [code, name] : kLanguages) buttons.push_back(languageButton(code, name, gallery));
    const auto picker = flow(buttons, {(column.width() - 32) / 5, 28}, column.width());
    column.add(picker, picker->frame().size.height);
}

void addBoundControls(Column& column) {
    column.caption(text("language.caption.bound"));
    auto button = make<NSButton>();
    NSButton_LocalizedKey::setLocalizedKey(button, "button.save");
    button->sizeToFit();
    auto field = make<NSTextField>(NSRect(0, 0, 240, 28));
    NSTextField_LocalizedKey::setLocalizedPlaceHolder(field, "language.name_placeholder");
    column.row({button, field});

    column.caption(text("language.caption.paragraph"));
    auto paragraph = make<NSTextView>();
    NSTextView_LocalizedKey::setLocalizedKey(paragraph, "language.paragraph");
    paragraph->setMaxSize({column.width(), 1'000});
    column.add(paragraph, paragraph->fittingSize().height);
}

void addTiles(Column& column) {
    column.caption(text("language.caption.flow"));
    std::vector<std::shared_ptr<NSView>> tiles;
    for (const char* key : {"one", "two", "three", "four", "five"}) {
        auto tile = make<NSButton>();
        NSButton_LocalizedKey::setLocalizedKey(tile, std::string("language.tile.") + key);
        tiles.push_back(tile);
    }
    const auto view = flow(tiles, {(column.width() - 24) / 4, 32}, column.width());
    column.add(view, view->frame().size.height);
}

}  // namespace

void LanguagePage::build(Column& column, Gallery& gallery) {
    column.title(text("language.title"));
    column.paragraph(text("language.explanation"));
    addPicker(column, gallery);
    column.space(6);
    column.pair(text("language.selected"), KXLocalizationUtils::selectLanguage());
    column.pair(text("language.right_to_left"),
                text(KXLocalizationUtils::isRTL() ? "general.yes" : "general.no"));
    addBoundControls(column);
    column.space(12);
    column.pair(text("language.caption.missing"), text("demo.missing"));
    column.pair(text("language.caption.only_english"), text("demo.only_english"));
    addTiles(column);
}

}  // namespace gallery
