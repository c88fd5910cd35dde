// SPDX-License-Identifier: MIT

#include "pages/PicturesPage.h"

#include <algorithm>
#include <string>

#include <KXFoundation/Media/NSColor_HEX.h>
#include <KXFoundation/Media/NSImage_Mask.h>
#include <KXFoundation/Media/NSView_Snapshot.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSImageView.h>

namespace gallery {

using namespace kx;

namespace {

constexpr double kLine = 20;

std::string sizeText(const NSImage& image) {
    return std::to_string(static_cast<int>(image.size().width)) + " × " +
           std::to_string(static_cast<int>(image.size().height));
}

/// The picture at its own size, and under it what it is and how large.
std::shared_ptr<NSView> tile(std::string_view key, const std::shared_ptr<NSImage>& image) {
    const auto name = label(text(key), 12);
    const auto size = label(image ? sizeText(*image) : text("general.none"), 12);
    size->setTextColor(NSColor::secondaryLabelColor());
    const NSSize points = image ? image->size() : NSSize();
    const double width = std::max({points.width, name->frame().size.width, size->frame().size.width});
    auto view = make<NSView>(NSRect(0, 0, width, points.height + 2 * kLine + 6));
    const auto picture = NSImageView::imageViewWithImage(image);
    picture->setFrame(directed({{}, points}, width));
    name->setFrame(directed({0, points.height + 6, width, kLine}, width));
    size->setFrame(directed({0, points.height + 6 + kLine, width, kLine}, width));
    for (const std::shared_ptr<NSView>& part :
         {std::shared_ptr<NSView>(picture), std::shared_ptr<NSView>(name), std::shared_ptr<NSView>(size)})
        view->addSubview(part);
    return view;
}

std::shared_ptr<NSImage> tinted(const std::shared_ptr<NSImage>& image, std::string_view code) {
    return NSImage_Mask::imageContentWithColor(image, NSColor_HEX::colorWithHexString(code));
}

/// Of a button that is in no window.
std::shared_ptr<NSImage> snapshotOfButton() {
    auto button = make<NSButton>();
    button->setTitle(text("button.save"));
    button->setDefaultButton(true);
    button->sizeToFit();
    return NSView_Snapshot::snapshot(button);
}

void addRow(Column& column, const std::vector<std::shared_ptr<NSView>>& tiles) {
    double height = 0;
    for (const auto& view : tiles) height = std::max(height, view->frame().size.height);
    std::vector<std::shared_ptr<NSView>> frames;
    for (const auto& view : tiles) {  // the row gives every view its own height; tiles hang from the top
        auto frame = make<NSView>(NSRect({}, view->frame().size));
        frame->addSubview(view);
        frames.push_back(frame);
    }
    column.row(frames, height);
}

}  // namespace

void PicturesPage::build(Column& column, Gallery&) {
    column.title(text("pictures.title"));
    column.paragraph(text("pictures.explanation"));
    column.space(12);
    const auto grey = NSImage_Mask::grayImage(photo_);
    addRow(column, {tile("pictures.original", photo_),
                    tile("pictures.grey", NSImage_Mask::fixImageSizeWithWidth(grey, 200)),
                    tile("pictures.resized", NSImage_Mask::fixImageSizeWithWidth(photo_, 64))});
    column.space(12);
    addRow(column,
           {tile("pictures.original", shape_), tile("pictures.tinted", tinted(shape_, "#2463D4")),
            tile("pictures.tinted", tinted(NSImage_Mask::fixImageSizeWithWidth(shape_, 60), "#C03A2B")),
            tile("pictures.grey", NSImage_Mask::grayImage(shape_)),
            tile("pictures.snapshot", snapshotOfButton())});
}

}  // namespace gallery
