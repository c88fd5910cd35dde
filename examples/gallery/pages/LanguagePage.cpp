// SPDX-License-Identifier: MIT

#include "pages/LanguagePage.h"

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/LiveLanguage.h>
#include <KXFoundation/Localization/NSButton_LocalizedKey.h>
#include <KXFoundation/Localization/NSTextField_LocalizedKey.h>
#include <KXFoundation/Localization/NSTextView_LocalizedKey.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSCollectionView.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>
#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>

#include "Gallery.h"
#include "PushButton.h"

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

/// Places the views one after another from where reading begins.
void placeInLine(const std::shared_ptr<NSView>& line, const std::vector<std::shared_ptr<NSView>>& views) {
    using enum NSLayoutAttribute;
    std::shared_ptr<NSView> before;
    for (const auto& view : views) {
        line->addSubview(view);
        view->setTranslatesAutoresizingMaskIntoConstraints(false);
        NSLayoutConstraint::activateConstraints({
            NSLayoutConstraint::constraintWithItem(view, Leading, before ? before : line,
                                                   before ? Trailing : Leading, before ? 10 : 0),
            NSLayoutConstraint::constraintWithItem(view, CenterY, line, CenterY),
        });
        before = view;
    }
}

std::shared_ptr<NSButton> liveSwitch(std::string_view code, std::string_view name) {
    auto button = titledButton(name, [code] { KXLocalizationUtils::setSelectLanguage(code); });
    LiveLanguage::exempt(button);
    return button;
}

/// Nothing here is made anew by a switch.
void addLiveTexts(Column& column, Gallery& gallery) {
    column.caption(text("language.caption.live"));
    const auto line = make<NSView>();
    LiveLanguage::bindLayout(line);
    const auto unbound = label("");
    LiveLanguage::bind(unbound, [window = std::weak_ptr(gallery.window())] {
        const auto count = LiveLanguage::unbound(window.lock()).size();
        return text("language.live.unbound") + ": " + std::to_string(count);
    });
    DispatchQueue::main().async([unbound] { LiveLanguage::refresh(unbound); });  // once the page is shown
    const auto save = make<NSButton>();
    LiveLanguage::bind(save, "button.save");
    const auto field = make<NSTextField>();
    LiveLanguage::bindPlaceholder(field, "language.name_placeholder");
    placeInLine(line, {liveSwitch("en", "English"), liveSwitch("ar", "العربية"), liveSwitch("ja", "日本語"),
                       save, field, unbound});
    NSLayoutConstraint::constraintWithItem(field, NSLayoutAttribute::Width, 120)->setActive(true);
    column.add(line, 28);
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
    addLiveTexts(column, gallery);
}

}  // namespace gallery
