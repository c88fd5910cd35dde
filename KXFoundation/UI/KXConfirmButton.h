// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <KXFoundation/Platform/Views/NSButton.h>

namespace kx {

/// A button to agree with: its title is larger and semibold and, if it is archived with a layer, its corners
/// are rounder. It makes itself no layer. Main thread.
class KX_EXPORT KXConfirmButton : public Subclass<KXConfirmButton, NSButton> {
  public:
    /// The application's own mark: it changes nothing in how the button looks.
    enum class Style : std::uint8_t { blue, green };

    bool init(NSRect frame = {});
    bool init(NSCoder& coder);

    [[nodiscard]] Style style() const noexcept { return style_; }
    void setStyle(Style style) noexcept { style_ = style; }

    /// As a plain button, without a change of its look beyond that.
    void setEnabled(bool enabled) override;

  protected:
    KXConfirmButton() = default;

  private:
    bool setUp();

    Style style_ = Style::blue;
};

}  // namespace kx
