// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Views/NSControl.h>

namespace kx {

class NSColor;

/// One line of text: a field with a border when editable, a label otherwise. It shows what it is given; what
/// is typed, an application takes from keyDown().
class KX_EXPORT NSTextField : public Subclass<NSTextField, NSControl> {
  public:
    /// Runs the exchangeable "initWithFrame:".
    bool init(NSRect frame = {});
    /// Runs the exchangeable "initWithCoder:".
    bool init(NSCoder& coder);
    /// Adds "stringValue", "placeholderString" and "editable".
    void encodeWithCoder(NSCoder& coder) const override;
    static void defineOperations(Class& cls);

    [[nodiscard]] const std::string& stringValue() const noexcept { return string_; }
    /// Absent is the empty text.
    void setStringValue(std::optional<std::string_view> text);
    /// Shown in grey while the text is empty.
    [[nodiscard]] const std::optional<std::string>& placeholderString() const noexcept {
        return placeholder_;
    }
    void setPlaceholderString(std::optional<std::string_view> text);

    /// Runs the exchangeable "setAlignment:".
    void setAlignment(NSTextAlignment alignment) override;

    /// None (the default) stands for the label colour of the appearance.
    [[nodiscard]] std::shared_ptr<NSColor> textColor() const { return textColor_; }
    void setTextColor(std::shared_ptr<NSColor> color);
    [[nodiscard]] bool isEditable() const noexcept { return editable_; }
    void setEditable(bool editable);

    [[nodiscard]] NSSize intrinsicContentSize() const override;
    void drawRect(GraphicsContext& context, NSRect dirtyRect) override;

  protected:
    NSTextField() = default;

    // The platform's own implementations of the operations.
    void applyAlignment(NSTextAlignment alignment);
    bool initializeWithFrame(NSRect frame);
    bool initializeWithCoder(NSCoder& coder);

  private:
    void drawString(GraphicsContext& context) const;

    std::string string_;
    std::optional<std::string> placeholder_;
    std::shared_ptr<NSColor> textColor_;
    bool editable_ = true;
};

}  // namespace kx
