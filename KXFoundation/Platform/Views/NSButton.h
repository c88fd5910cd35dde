// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Views/NSControl.h>

namespace kx {

class NSImage;

/// A push button with a title, a picture before it, or both. A click that ends over the button sends its
/// action; so does Space or Enter, when let go, while the button has the keys.
class KX_EXPORT NSButton : public Subclass<NSButton, NSControl> {
  public:
    /// Runs the exchangeable "initWithFrame:".
    bool init(NSRect frame = {});
    /// Runs the exchangeable "initWithCoder:".
    bool init(NSCoder& coder);
    /// Adds "title".
    void encodeWithCoder(NSCoder& coder) const override;
    static void defineOperations(Class& cls);

    [[nodiscard]] const std::string& title() const noexcept { return title_; }
    /// Absent is the empty text.
    void setTitle(std::optional<std::string_view> title);
    [[nodiscard]] std::shared_ptr<NSImage> image() const { return image_; }
    void setImage(std::shared_ptr<NSImage> image);

    /// Drawn in the accent colour: the button that Enter presses.
    [[nodiscard]] bool isDefaultButton() const noexcept { return default_; }
    void setDefaultButton(bool isDefault);
    /// Sends the action if the button is enabled.
    void performClick();

    /// Runs the exchangeable "hitTest:".
    [[nodiscard]] std::shared_ptr<NSView> hitTest(NSPoint point) override;

    void mouseDown(const NSEvent& event) override;
    void mouseDragged(const NSEvent& event) override;
    void mouseUp(const NSEvent& event) override;
    [[nodiscard]] bool acceptsFirstResponder() const override { return isEnabled(); }
    bool resignFirstResponder() override;
    void viewWillMoveToWindow(const std::shared_ptr<NSWindow>& window) override;
    void keyDown(const NSEvent& event) override;
    void keyUp(const NSEvent& event) override;
    /// Enter, for the default button.
    bool performKeyEquivalent(const NSEvent& event) override;
    [[nodiscard]] NSSize intrinsicContentSize() const override;
    void drawRect(GraphicsContext& context, NSRect dirtyRect) override;

  protected:
    NSButton() = default;

    // The platform's own implementations of the operations.
    bool initializeWithFrame(NSRect frame);
    bool initializeWithCoder(NSCoder& coder);
    std::shared_ptr<NSView> hitTestPlainly(NSPoint point);

  private:
    struct Content;
    [[nodiscard]] Content content(double mostHeight) const;
    [[nodiscard]] double contentStart(const Content& shown, NSRect inside) const;
    void drawBackground(GraphicsContext& context) const;
    void drawContent(GraphicsContext& context) const;
    [[nodiscard]] bool isUnder(const NSEvent& event);
    [[nodiscard]] bool showsFocus() const;

    std::string title_;
    std::shared_ptr<NSImage> image_;
    bool default_ = false;
    bool tracking_ = false;  // by the mouse
    bool pressedByKey_ = false;
};

}  // namespace kx
