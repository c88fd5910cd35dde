// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>
#include <KXFoundation/Platform/Views/ViewOperations.h>

namespace kx {

namespace {
double usable(double length) {
    return std::isfinite(length) && length > 0 ? length : 0;
}
}  // namespace

struct NSCollectionViewFlowLayout::Grid {
    std::size_t columns;
    NSSize item;
    double left;
    double top;
    double columnStep;  // from one item's left edge to the next one's
    double rowStep;

    [[nodiscard]] NSRect frame(std::size_t index) const {
        const auto column = static_cast<double>(index % columns);
        const std::size_t row = index / columns;
        return {{left + column * columnStep, top + static_cast<double>(row) * rowStep}, item};
    }
};

NSCollectionViewFlowLayout::Grid NSCollectionViewFlowLayout::grid(double width) const {
    constexpr double kMostColumns = 1'000'000;  // items without a width all fit into one row
    const NSSize item{usable(itemSize_.width), usable(itemSize_.height)};
    const double left = usable(inset_.left);
    const double room = std::max(0.0, usable(width) - left - usable(inset_.right));
    const double spacing = usable(interitemSpacing_);
    const double step = item.width + spacing;
    const double fitting = step > 0 ? std::floor((room + spacing) / step) : kMostColumns;
    const double columns = std::clamp(fitting, 1.0, kMostColumns);
    return {.columns = static_cast<std::size_t>(columns),
            .item = item,
            .left = left,
            .top = usable(inset_.top),
            .columnStep = columns > 1 ? std::max(step, (room - item.width) / (columns - 1)) : step,
            .rowStep = item.height + usable(lineSpacing_)};
}

void NSCollectionViewFlowLayout::defineOperations(Class& cls) {
    flipsHorizontallyInOppositeLayoutDirectionOperation
        .implement<&NSCollectionViewFlowLayout::flipsByDefault>(cls);
}

bool NSCollectionViewFlowLayout::flipsHorizontallyInOppositeLayoutDirection() {
    return flipsHorizontallyInOppositeLayoutDirectionOperation(*this);
}

NSUserInterfaceLayoutDirection NSCollectionViewFlowLayout::userInterfaceLayoutDirection() {
    if (direction_) return *direction_;
    return flipsHorizontallyInOppositeLayoutDirection() ? NSUserInterfaceLayoutDirection::RightToLeft
                                                        : NSUserInterfaceLayoutDirection::LeftToRight;
}

bool NSCollectionViewFlowLayout::isMirrored() {
    if (direction_ == NSUserInterfaceLayoutDirection::LeftToRight) return false;
    return flipsHorizontallyInOppositeLayoutDirection();
}

std::vector<NSCollectionViewLayoutAttributes> NSCollectionViewFlowLayout::layoutAttributes(std::size_t count,
                                                                                           double width) {
    const Grid places = grid(width);
    const bool mirrored = isMirrored();
    std::vector<NSCollectionViewLayoutAttributes> attributes;
    attributes.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        NSRect frame = places.frame(i);
        if (mirrored) frame.origin.x = usable(width) - frame.maxX();
        attributes.push_back({i, frame});
    }
    return attributes;
}

double NSCollectionViewFlowLayout::contentHeight(std::size_t count, double width) const {
    const double bottom = count > 0 ? grid(width).frame(count - 1).maxY() : usable(inset_.top);
    return bottom + usable(inset_.bottom);
}

}  // namespace kx
