// SPDX-License-Identifier: MIT

#include "Column.h"

#include <cmath>
#include <utility>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Views/NSCollectionView.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>

namespace gallery {

using namespace kx;

namespace {
constexpr double kGap = 10;  // between the views of a row
}

std::string text(std::string_view key) {
    return KXLocalizationUtils::localizedStringForKey(key, std::nullopt).value_or(std::string(key));
}

std::string shownPath(const std::string& path) {
    const auto home = Environment::slot().current().variable("HOME");
    return home && path.starts_with(*home + "/") ? "~" + path.substr(home->size()) : path;
}

NSRect directed(NSRect frame, double width) {
    if (KXLocalizationUtils::isRTL()) frame.origin.x = width - frame.maxX();
    return frame;
}

std::shared_ptr<NSTextField> label(std::string_view text, double size, bool bold) {
    auto field = make<NSTextField>();
    field->setEditable(false);
    field->setFont(bold ? NSFont::boldSystemFontOfSize(size) : NSFont::systemFontOfSize(size));
    field->setStringValue(text);
    field->sizeToFit();
    return field;
}

Column::Column(NSView& view, double left, double top, double width)
    : view_(view), left_(left), y_(top), width_(width), mirrored_(KXLocalizationUtils::isRTL()) {}

void Column::place(const std::shared_ptr<NSView>& view, double x, double width, double height) {
    const double fromLeft = mirrored_ ? width_ - x - width : x;
    view->setFrame({left_ + fromLeft, y_, width, height});
    view_.addSubview(view);
}

void Column::add(const std::shared_ptr<NSView>& view, double height) {
    if (height == 0) {
        view->setFrame({0, 0, width_, 0});
        height = view->fittingSize().height;
    }
    place(view, 0, width_, height);
    y_ += height + 8;
}

void Column::row(const std::vector<std::shared_ptr<NSView>>& views, double height) {
    std::vector<std::shared_ptr<NSView>> line;
    double end = 0;
    for (const auto& view : views) {
        const double width = view->frame().size.width;
        if (end > 0 && end + width > width_ + 0.5) {  // shares of the width need not sum up exactly
            tableRow(std::exchange(line, {}), height);
            end = 0;
        }
        line.push_back(view);
        end += width + kGap;
    }
    tableRow(line, height);
}

void Column::tableRow(const std::vector<std::shared_ptr<NSView>>& views, double height) {
    double x = 0;
    for (const auto& view : views) {
        const double width = view->frame().size.width;
        place(view, x, width, height);
        x += width + kGap;
    }
    y_ += height + 8;
}

void Column::grid(const std::vector<std::shared_ptr<NSView>>& cells, std::size_t columns, double rowHeight,
                  double gap) {
    auto layout = make<NSCollectionViewFlowLayout>();  // asks isRTL() whether to mirror its rows
    const double count = static_cast<double>(columns);
    layout->setItemSize({std::floor((width_ - (count - 1) * gap) / count), rowHeight});
    layout->setMinimumInteritemSpacing(gap);
    layout->setMinimumLineSpacing(gap);
    auto view = make<NSCollectionView>();
    view->setCollectionViewLayout(layout);
    view->setItemViews(cells);
    add(view, layout->contentHeight(cells.size(), width_));
}

void Column::title(std::string_view words) {
    const auto line = label(words, 24, true);
    const double height = line->frame().size.height;
    place(line, 0, width_ - kLookButtonWidth - 10, height);
    y_ += height + 8;
}

void Column::paragraph(std::string_view words) {
    auto view = make<NSTextView>();
    view->setString(words);
    view->setTextColor(NSColor::secondaryLabelColor());
    view->setMaxSize({width_, 10'000});
    add(view, view->fittingSize().height);
}

void Column::caption(std::string_view words) {
    space(10);
    const auto line = label(words, 12, true);
    line->setTextColor(NSColor::secondaryLabelColor());
    add(line, line->frame().size.height);
}

std::shared_ptr<NSTextField> Column::pair(std::string_view captionWords, std::string_view value) {
    constexpr double kCaptionWidth = 260;
    const auto caption = label(captionWords);
    caption->setTextColor(NSColor::secondaryLabelColor());
    const auto field = label(value);
    const double height = caption->frame().size.height;
    const double start = kCaptionWidth + 10;
    const bool fits = start + field->frame().size.width <= width_;
    place(caption, 0, fits ? kCaptionWidth : width_, height);
    if (!fits) y_ += height;
    place(field, fits ? start : 0, fits ? width_ - start : width_, height);
    y_ += height + 6;
    return field;
}

}  // namespace gallery
