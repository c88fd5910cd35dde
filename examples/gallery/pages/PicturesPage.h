// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Graphics/NSImage.h>

#include "Page.h"

namespace gallery {

/// A photograph and a shape, and what is made of them: grey, tinted, resized, the snapshot of a view.
class PicturesPage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;

  private:
    const std::shared_ptr<kx::NSImage> photo_ = kx::NSImage::imageNamed("balloons");
    const std::shared_ptr<kx::NSImage> shape_ = kx::NSImage::imageNamed("boat");
};

}  // namespace gallery
