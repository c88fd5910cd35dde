// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include <KXFoundation/Platform/Views/NSControl.h>

namespace kx {

class NSImage;

enum class NSImageScaling : std::uint8_t {
    ProportionallyDown,      ///< as large as it is, smaller where it does not fit
    AxesIndependently,       ///< stretched to the whole view
    None,                    ///< as large as it is, cut at the edges
    ProportionallyUpOrDown,  ///< as large as fits
};

/// Shows one picture, in the middle of the view.
class KX_EXPORT NSImageView : public Subclass<NSImageView, NSControl> {
  public:
    /// A view of the picture's size.
    [[nodiscard]] static std::shared_ptr<NSImageView> imageViewWithImage(std::shared_ptr<NSImage> image);

    [[nodiscard]] std::shared_ptr<NSImage> image() const { return image_; }
    /// None shows nothing.
    virtual void setImage(std::shared_ptr<NSImage> image);
    [[nodiscard]] NSImageScaling imageScaling() const noexcept { return scaling_; }
    void setImageScaling(NSImageScaling scaling);

    [[nodiscard]] NSSize intrinsicContentSize() const override;
    void drawRect(GraphicsContext& context, NSRect dirtyRect) override;

  protected:
    NSImageView() = default;

  private:
    std::shared_ptr<NSImage> image_;
    NSImageScaling scaling_ = NSImageScaling::ProportionallyDown;
};

}  // namespace kx
