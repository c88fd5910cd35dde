// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include <KXFoundation/Platform/Views/NSView.h>

namespace kx {

class NSCollectionViewFlowLayout;

/// Shows item views in the places that its layout gives them. Without a layout the items stay where they are.
class KX_EXPORT NSCollectionView : public Subclass<NSCollectionView, NSView> {
  public:
    [[nodiscard]] const std::vector<std::shared_ptr<NSView>>& itemViews() const noexcept {
        return subviews();
    }
    /// Replaces all items; none among them are left out.
    void setItemViews(const std::vector<std::shared_ptr<NSView>>& items);

    [[nodiscard]] std::shared_ptr<NSCollectionViewFlowLayout> collectionViewLayout() const { return layout_; }
    void setCollectionViewLayout(std::shared_ptr<NSCollectionViewFlowLayout> layout);

    /// The height of the items at the present width.
    [[nodiscard]] NSSize intrinsicContentSize() const override;
    void layout() override;

  protected:
    NSCollectionView() = default;

  private:
    std::shared_ptr<NSCollectionViewFlowLayout> layout_;
};

}  // namespace kx
