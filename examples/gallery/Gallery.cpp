// SPDX-License-Identifier: MIT

#include "Gallery.h"

#include <algorithm>

#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>

#include "InspectingWindow.h"

namespace gallery {

using namespace kx;

namespace {

constexpr double kMargin = 28;
constexpr double kTop = 24;
constexpr double kLeastSide = 400;
constexpr double kLeastStep = 29;  // from page to page in the side list

constexpr const char* kPageKey = "window.page";
constexpr const char* kWidthKey = "window.width";
constexpr const char* kHeightKey = "window.height";
constexpr const char* kDarkKey = "window.dark";

/// A plain area in one colour.
class Area : public Subclass<Area, NSView> {
  public:
    bool init(std::shared_ptr<NSColor> color) {
        color_ = std::move(color);
        return Super::init();
    }
    void drawRect(GraphicsContext& context, NSRect dirty) override { context.fill(dirty, *color_); }

  private:
    std::shared_ptr<NSColor> color_;
};

void collectKeyViews(const NSView& view, std::vector<std::shared_ptr<NSView>>& found) {
    for (const auto& subview : view.subviews()) {
        if (subview->acceptsFirstResponder()) found.push_back(subview);
        collectKeyViews(*subview, found);
    }
}

std::vector<std::shared_ptr<NSView>> keyViews(const NSView& root) {
    std::vector<std::shared_ptr<NSView>> found;
    collectKeyViews(root, found);
    return found;
}

}  // namespace

/// The content view. What it holds is made by its layout, so that a new size, language or page take the same
/// road.
class Gallery::Root : public Subclass<Root, Area> {
  public:
    bool init(Gallery& gallery) {
        gallery_ = &gallery;
        return Super::init(NSColor::windowBackgroundColor());
    }
    void layout() override { gallery_->build(*this); }

  private:
    Gallery* gallery_ = nullptr;
};

/// Its keys move the page, and what gets them by Tab comes into sight.
class Gallery::Window : public Subclass<Window, InspectingWindow> {
  public:
    bool init(const Gallery& gallery) {
        gallery_ = &gallery;
        return Super::init(NSRect(0, 0, kWidth, kHeight));
    }
    void keyDown(const NSEvent& event) override {
        if (gallery_->shown_ && gallery_->shown_->scrollByKey(event)) return;
        Super::keyDown(event);
        gallery_->revealFocus();
    }

  private:
    const Gallery* gallery_ = nullptr;
};

Gallery::Gallery() : window_(make<Window>(*this)), root_(make<Root>(*this)) {
    window_->setContentView(root_);
}

/// The window's views know the gallery, so none is left on the screen.
Gallery::~Gallery() {
    window_->close();
}

bool Gallery::show(std::string_view page) {
    const auto found = std::ranges::find(pages(), page, &PageEntry::name);
    if (found == pages().end()) return false;
    chosen_ = static_cast<std::size_t>(found - pages().begin());
    page_ = nullptr;
    shown_ = nullptr;
    rebuild();
    return true;
}

void Gallery::restore() {
    const NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    show(defaults.stringForKey(kPageKey).value_or(""));
    const double width = defaults.objectForKey(kWidthKey).asReal().value_or(kWidth);
    const double height = defaults.objectForKey(kHeightKey).asReal().value_or(kHeight);
    window_->setFrame({0, 0, std::max(width, kLeastSide), std::max(height, kLeastSide)});
    if (defaults.objectForKey(kDarkKey).asBoolean().value_or(false))
        window_->setAppearance(NSAppearance::Dark);
}

void Gallery::remember() const {
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    defaults.setObject(kPageKey, pages()[chosen_].name);
    defaults.setObject(kWidthKey, window_->frame().size.width);
    defaults.setObject(kHeightKey, window_->frame().size.height);
    defaults.setObject(kDarkKey, window_->appearance() == NSAppearance::Dark);
    defaults.synchronize();
}

void Gallery::rebuild() {
    root_->setNeedsLayout();
    root_->setNeedsDisplay();
}

/// The view that has the keys is one of those made anew: its successor in the tree's order gets them.
void Gallery::build(NSView& root) {
    window_->setTitle(text("app.title"));
    const auto before = keyViews(root);
    const auto focused = std::ranges::find(before, window_->firstResponder()) - before.begin();
    const bool hadFocus = focused != std::ssize(before);
    while (!root.subviews().empty()) root.subviews().back()->removeFromSuperview();
    addSideList(root);
    addPage(root);
    const auto after = keyViews(root);
    if (hadFocus && focused < std::ssize(after)) window_->makeFirstResponder(after[std::size_t(focused)]);
}

void Gallery::revealFocus() const {
    const auto focused = window_->firstResponder();
    const auto* view = dynamic_cast<const NSView*>(focused.get());
    for (const auto& area : {side_, shown_}) {
        if (view && area) area->reveal(*view);
    }
}

void Gallery::addSideList(NSView& root) {
    const NSSize size = root.frame().size;
    auto side = make<Area>(NSColor::controlBackgroundColor());
    Column column(*side, 16, kTop, kSideWidth - 32);
    const auto title = label(text("app.title"), 15, true);
    column.add(title, title->frame().size.height);
    column.space(10);
    const double room = (size.height - column.y() - 12) / double(pages().size());
    const double step = std::clamp(room, kLeastStep, 38.0);
    for (const PageEntry& entry : pages()) {
        auto button = make<NSButton>();
        button->setTitle(text(entry.titleKey));
        button->setDefaultButton(&entry == &pages()[chosen_]);
        button->setAction([this, name = entry.name](NSControl&) {
            if (name != pages()[chosen_].name) show(name);  // a page keeps what was done on it
        });
        column.add(button, step - 8);
    }
    side_ = make<ScrollArea>(directed({0, 0, kSideWidth, size.height}, size.width), side, column.y() + 4,
                             side_ ? side_->offset() : 0);
    root.addSubview(side_);
}

void Gallery::addPage(NSView& root) {
    const NSSize size = root.frame().size;
    const NSRect area = directed({kSideWidth, 0, size.width - kSideWidth, size.height}, size.width);
    const auto content = make<NSView>(NSRect({}, area.size));
    if (!page_) page_ = pages()[chosen_].make();
    Column column(*content, kMargin, kTop, area.size.width - 2 * kMargin);
    page_->build(column, *this);
    const auto look = lookButton();
    constexpr double kSide = Column::kLookButtonWidth;
    look->setFrame(directed({area.size.width - kMargin - kSide, kTop, kSide, 28}, area.size.width));
    content->addSubview(look);
    shown_ = make<ScrollArea>(area, content, column.y() + kTop, shown_ ? shown_->offset() : 0);
    root.addSubview(shown_);
}

/// Changes between light and dark.
std::shared_ptr<NSButton> Gallery::lookButton() const {
    auto button = make<NSButton>();
    button->setTitle("◐");
    button->setAction([window = window_.get()](NSControl&) {
        window->setAppearance(window->appearance() == NSAppearance::Dark ? NSAppearance::Light
                                                                         : NSAppearance::Dark);
    });
    return button;
}

}  // namespace gallery
