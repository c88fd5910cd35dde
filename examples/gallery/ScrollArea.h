// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Views/NSView.h>

namespace gallery {

/// Shows a part of a view that may be higher than itself. The wheel moves it, and so do the keys that the
/// window gives it; a thin bar tells where the part is.
class ScrollArea : public kx::Subclass<ScrollArea, kx::NSView> {
  public:
    /// `height` is that of the whole content, which is as wide as the area and begins `offset` above it.
    bool init(kx::NSRect frame, const std::shared_ptr<kx::NSView>& content, double height, double offset = 0);

    /// Points from the content's top to the part that is shown.
    [[nodiscard]] double offset() const { return offset_; }
    /// Goes as near as there is content.
    void scrollTo(double offset);
    /// Whether it was a key that moves the content: the arrows, Page Up and Down, Home and End.
    bool scrollByKey(const kx::NSEvent& event);
    /// Moves the content until the view is in the shown part, if it is one of the content's.
    void reveal(const kx::NSView& view);

    void scrollWheel(const kx::NSEvent& event) override;

  private:
    [[nodiscard]] double farthest() const;
    void placeBar();

    std::shared_ptr<kx::NSView> content_;
    std::shared_ptr<kx::NSView> bar_;
    double offset_ = 0;
};

}  // namespace gallery
