// SPDX-License-Identifier: MIT

#include "ScrollArea.h"

#include <algorithm>

#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/NSEvent.h>

#include "Column.h"

namespace gallery {

using namespace kx;

namespace {

constexpr double kLine = 40;
constexpr double kAround = 12;  // what a revealed view has around it
constexpr double kBarWidth = 4;
constexpr double kLeastBar = 24;

}  // namespace

bool ScrollArea::init(NSRect frame, const std::shared_ptr<NSView>& content, double height, double offset) {
    if (!Super::init(frame)) return false;
    setClipsToBounds(true);
    content_ = content;
    content_->setFrame({0, 0, frame.size.width, std::max(height, frame.size.height)});
    addSubview(content_);
    if (farthest() == 0) return true;
    bar_ = make<NSView>();
    bar_->setWantsLayer(true);
    bar_->layer()->setBackgroundColor(NSColor::separatorColor());
    bar_->layer()->setCornerRadius(kBarWidth / 2);
    addSubview(bar_);
    scrollTo(offset);
    placeBar();
    return true;
}

double ScrollArea::farthest() const {
    return content_->frame().size.height - bounds().size.height;
}

void ScrollArea::scrollTo(double offset) {
    offset = std::clamp(offset, 0.0, farthest());
    if (offset == offset_) return;
    offset_ = offset;
    content_->setFrame({{0, -offset}, content_->frame().size});
    placeBar();
}

void ScrollArea::placeBar() {
    const NSSize size = bounds().size;
    const double share = size.height / content_->frame().size.height;
    const double length = std::max(kLeastBar, size.height * share);
    const double y = (size.height - length) * offset_ / farthest();
    bar_->setFrame(directed({size.width - 2 * kBarWidth, y, kBarWidth, length}, size.width));
}

bool ScrollArea::scrollByKey(const NSEvent& event) {
    const double page = bounds().size.height - kLine;
    const struct {
        std::string_view key;
        double offset;
    } rows[] = {
        {NSUpArrowFunctionKey, offset_ - kLine},
        {NSDownArrowFunctionKey, offset_ + kLine},
        {NSPageUpFunctionKey, offset_ - page},
        {NSPageDownFunctionKey, offset_ + page},
        {NSHomeFunctionKey, 0},
        {NSEndFunctionKey, farthest()},
    };
    const auto found = std::ranges::find(rows, event.characters, [](const auto& row) { return row.key; });
    if (found == std::end(rows)) return false;
    scrollTo(found->offset);
    return true;
}

void ScrollArea::reveal(const NSView& view) {
    if (!view.isDescendantOf(*content_)) return;
    const NSRect shown = view.convertRectToView(view.bounds(), this).insetBy(-kAround, -kAround);
    if (shown.origin.y < 0) {
        scrollTo(offset_ + shown.origin.y);
    } else if (shown.maxY() > bounds().size.height) {
        scrollTo(offset_ + shown.maxY() - bounds().size.height);
    }
}

void ScrollArea::scrollWheel(const NSEvent& event) {
    scrollTo(offset_ - event.scrollingDelta.y * kLine);
}

}  // namespace gallery
