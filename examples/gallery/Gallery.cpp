#include "Gallery.h"

#include <algorithm>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Views/NSButton.h>

namespace gallery {

using namespace kx;

namespace {

constexpr double kSideWidth = 200;
constexpr double kMargin = 28;

/// A plain area in one colour.
class Area : public Subclass<Area, NSView> {
 public:
    bool init(NSRect frame, std::shared_ptr<NSColor> color) {
        color_ = std::move(color);
        return Super::init(frame);
    }
    void drawRect(GraphicsContext& context, NSRect dirty) override { context.fill(dirty, *color_); }

 private:
    std::shared_ptr<NSColor> color_;
};

}  // namespace

Gallery::Gallery() : window_(make<NSWindow>(NSRect(0, 0, kWidth, kHeight))) { rebuild(); }

bool Gallery::show(std::string_view page) {
    const auto found = std::ranges::find(pages(), page, &PageEntry::name);
    if (found == pages().end()) return false;
    chosen_ = static_cast<std::size_t>(found - pages().begin());
    rebuild();
    return true;
}

void Gallery::rebuild() {
    window_->setTitle(text("app.title"));
    const NSSize size = window_->frame().size;
    auto root = make<Area>(NSRect({}, size), NSColor::windowBackgroundColor());
    addSideList(*root);
    addPage(*root);
    window_->setContentView(root);
}

void Gallery::addSideList(NSView& root) {
    const NSSize size = root.frame().size;
    auto side = make<Area>(directed({0, 0, kSideWidth, size.height}, size.width), NSColor::controlBackgroundColor());
    Column column(*side, 16, 24, kSideWidth - 32);
    const auto title = label(text("app.title"), 15, true);
    column.add(title, title->frame().size.height);
    column.space(10);
    for (const PageEntry& entry : pages()) {
        auto button = make<NSButton>();
        button->setTitle(text(entry.titleKey));
        button->setDefaultButton(&entry == &pages()[chosen_]);
        button->setAction([this, name = entry.name](NSControl&) { show(name); });
        column.add(button, 30);
    }
    root.addSubview(side);
}

void Gallery::addPage(NSView& root) {
    const NSSize size = root.frame().size;
    auto content = make<NSView>(directed({kSideWidth, 0, size.width - kSideWidth, size.height}, size.width));
    root.addSubview(content);
    page_ = pages()[chosen_].make();
    Column column(*content, kMargin, 24, content->frame().size.width - 2 * kMargin);
    page_->build(column, *this);
}

}  // namespace gallery
