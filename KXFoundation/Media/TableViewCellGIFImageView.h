// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Media/KXGIFImageView.h>

namespace kx {

/// For a row of a table: selecting the row does not change the picture.
class KX_EXPORT TableViewCellGIFImageView : public Subclass<TableViewCellGIFImageView, KXGIFImageView> {
  public:
    void setHighlighted(bool) override {}

  protected:
    TableViewCellGIFImageView() = default;
};

}  // namespace kx
