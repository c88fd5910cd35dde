// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include <KXFoundation/Media/KXGIFImageView.h>

namespace kx {

/// For a row of a table: selecting the row does not change the picture.
class KX_EXPORT TableViewCellGIFImageView : public Subclass<TableViewCellGIFImageView, KXGIFImageView> {
  public:
    [[nodiscard]] static std::shared_ptr<TableViewCellGIFImageView> initWithGIFPath(
        std::optional<std::string_view> path) {
        return make<TableViewCellGIFImageView>(path);
    }

    void setHighlighted(bool) override {}

  protected:
    TableViewCellGIFImageView() = default;
};

}  // namespace kx
