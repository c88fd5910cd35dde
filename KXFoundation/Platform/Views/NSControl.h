// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <KXFoundation/Platform/Graphics/NSTextAlignment.h>
#include <KXFoundation/Platform/Views/NSView.h>

namespace kx {

class NSFont;

/// A view that the user operates: it can be switched off, shows a text, and tells one action what happened.
class KX_EXPORT NSControl : public Subclass<NSControl, NSView> {
  public:
    bool init(NSRect frame = {});
    bool init(NSCoder& coder);
    /// Adds "alignment" (the enumeration's number) and "enabled".
    void encodeWithCoder(NSCoder& coder) const override;

    [[nodiscard]] bool isEnabled() const noexcept { return enabled_; }
    virtual void setEnabled(bool enabled);

    /// Whether it looks pressed or selected at the moment.
    [[nodiscard]] bool isHighlighted() const noexcept { return highlighted_; }
    virtual void setHighlighted(bool highlighted);

    /// Called on the main thread when the user has done what the control is for. It may remove the control
    /// and drop the last reference to it. Absent takes the action away.
    void setAction(std::function<void(NSControl& sender)> action) { action_ = std::move(action); }
    /// Calls the action as if the user had done it, enabled or not.
    void sendAction();

    /// None (the default) stands for the system font in the usual size.
    [[nodiscard]] std::shared_ptr<NSFont> font() const { return font_; }
    void setFont(std::shared_ptr<NSFont> font);
    [[nodiscard]] NSTextAlignment alignment() const noexcept { return alignment_; }
    virtual void setAlignment(NSTextAlignment alignment);

  protected:
    NSControl() = default;
    [[nodiscard]] std::shared_ptr<NSFont> usedFont() const;

  private:
    std::function<void(NSControl&)> action_;
    std::shared_ptr<NSFont> font_;
    NSTextAlignment alignment_ = NSTextAlignment::Natural;
    bool enabled_ = true;
    bool highlighted_ = false;
};

}  // namespace kx
