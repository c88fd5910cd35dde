// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSCollectionView.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>

namespace kx {

void NSCollectionView::setItemViews(const std::vector<std::shared_ptr<NSView>>& items) {
    if (!allowsChange()) return;
    const auto wanted = items;  // may be the list of the present ones
    const auto former = subviews();
    for (const auto& view : former) view->removeFromSuperview();
    for (const auto& view : wanted) addSubview(view);
    setNeedsLayout();
}

void NSCollectionView::setCollectionViewLayout(std::shared_ptr<NSCollectionViewFlowLayout> layout) {
    if (change(layout_, std::move(layout))) setNeedsLayout();
}

NSSize NSCollectionView::intrinsicContentSize() const {
    if (!layout_) return Super::intrinsicContentSize();
    return {kNoIntrinsicMetric, layout_->contentHeight(subviews().size(), bounds().size.width)};
}

void NSCollectionView::layout() {
    const auto layout = layout_;  // a subclass's may have another one set
    if (!layout) return;
    const auto items = subviews();
    const auto attributes = layout->layoutAttributes(items.size(), bounds().size.width);
    for (const auto& [item, frame] : attributes) items[item]->setFrame(frame);
}

}  // namespace kx
