// SPDX-License-Identifier: MIT
#pragma once

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Graphics/NSTextAlignment.h>
#include <KXFoundation/Platform/Views/NSView.h>

namespace kx {

class NSColor;
class NSFont;

/// A text in as many lines as it needs, wrapped at the view's width.
class KX_EXPORT NSTextView : public Subclass<NSTextView, NSView> {
  public:
    /// Runs the exchangeable "initWithFrame:".
    bool init(NSRect frame = {});
    /// Runs the exchangeable "initWithCoder:".
    bool init(NSCoder& coder);
    /// Adds "string" and "alignment" (the enumeration's number).
    void encodeWithCoder(NSCoder& coder) const override;
    static void defineOperations(Class& cls);

    [[nodiscard]] const std::string& string() const noexcept { return string_; }
    /// Replaces the whole text; absent is the empty text.
    void setString(std::optional<std::string_view> text);

    [[nodiscard]] NSTextAlignment alignment() const noexcept { return alignment_; }
    /// Runs the exchangeable "setAlignment:".
    virtual void setAlignment(NSTextAlignment alignment);

    /// None (the default) stands for the system font in the usual size.
    [[nodiscard]] std::shared_ptr<NSFont> font() const { return font_; }
    void setFont(std::shared_ptr<NSFont> font);
    /// None (the default) stands for the label colour of the appearance.
    [[nodiscard]] std::shared_ptr<NSColor> textColor() const { return textColor_; }
    void setTextColor(std::shared_ptr<NSColor> color);

    /// The most that fittingSize() answers; unlimited at first. A side that is not above 0 counts as 0.
    [[nodiscard]] NSSize maxSize() const noexcept { return maxSize_; }
    void setMaxSize(NSSize size);
    /// The size of the text wrapped at maxSize().width, in whole points, cut to maxSize().
    [[nodiscard]] NSSize fittingSize() const override;
    [[nodiscard]] NSSize intrinsicContentSize() const override;

    void drawRect(GraphicsContext& context, NSRect dirtyRect) override;

  protected:
    NSTextView() = default;

    // The platform's own implementations of the operations.
    void applyAlignment(NSTextAlignment alignment);
    bool initializeWithFrame(NSRect frame);
    bool initializeWithCoder(NSCoder& coder);

  private:
    static constexpr double kUnlimited = std::numeric_limits<double>::infinity();

    std::string string_;
    std::shared_ptr<NSFont> font_;
    std::shared_ptr<NSColor> textColor_;
    NSTextAlignment alignment_ = NSTextAlignment::Natural;
    NSSize maxSize_{kUnlimited, kUnlimited};
};

}  // namespace kx
