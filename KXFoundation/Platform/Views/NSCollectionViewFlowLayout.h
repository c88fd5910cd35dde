// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Views/NSUserInterfaceLayoutDirection.h>

namespace kx {

struct NSCollectionViewLayoutAttributes {
    std::size_t item = 0;
    NSRect frame;
    bool operator==(const NSCollectionViewLayoutAttributes&) const = default;
};

/// Places items of one size in rows from the top down, as many to a row as the width allows, at least one.
/// The gaps of a full row grow until it fills the width; the last row keeps the same gaps. A width, size or
/// spacing that is negative or not finite counts as 0. Main thread.
class KX_EXPORT NSCollectionViewFlowLayout : public Subclass<NSCollectionViewFlowLayout, NSObject> {
  public:
    static void defineOperations(Class& cls);

    [[nodiscard]] NSSize itemSize() const noexcept { return itemSize_; }
    void setItemSize(NSSize size) noexcept { itemSize_ = size; }
    [[nodiscard]] double minimumInteritemSpacing() const noexcept { return interitemSpacing_; }
    void setMinimumInteritemSpacing(double spacing) noexcept { interitemSpacing_ = spacing; }
    [[nodiscard]] double minimumLineSpacing() const noexcept { return lineSpacing_; }
    void setMinimumLineSpacing(double spacing) noexcept { lineSpacing_ = spacing; }
    [[nodiscard]] NSEdgeInsets sectionInset() const noexcept { return inset_; }
    void setSectionInset(NSEdgeInsets inset) noexcept { inset_ = inset; }

    /// Whether the rows are mirrored where the layout direction is the opposite one; the platform's own
    /// answer is no. Runs the exchangeable operation of this name.
    [[nodiscard]] virtual bool flipsHorizontallyInOppositeLayoutDirection();

    /// The direction that was set; otherwise right to left exactly while the query above answers yes.
    [[nodiscard]] NSUserInterfaceLayoutDirection userInterfaceLayoutDirection();
    void setUserInterfaceLayoutDirection(std::optional<NSUserInterfaceLayoutDirection> direction) noexcept {
        direction_ = direction;
    }

    /// The places of `count` items in a view that is `width` wide, in order.
    [[nodiscard]] std::vector<NSCollectionViewLayoutAttributes> layoutAttributes(std::size_t count,
                                                                                 double width);
    /// The height that they take, insets included.
    [[nodiscard]] double contentHeight(std::size_t count, double width) const;

  protected:
    NSCollectionViewFlowLayout() = default;

  private:
    struct Grid;
    [[nodiscard]] Grid grid(double width) const;
    [[nodiscard]] bool isMirrored();
    bool flipsByDefault() { return false; }

    NSSize itemSize_{50, 50};
    double interitemSpacing_ = 10;
    double lineSpacing_ = 10;
    NSEdgeInsets inset_;
    std::optional<NSUserInterfaceLayoutDirection> direction_;
};

}  // namespace kx
