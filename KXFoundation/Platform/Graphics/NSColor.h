// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include <KXFoundation/Platform/Graphics/NSAppearance.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// Red, green, blue and opacity, each 0 to 1, sRGB-encoded, not premultiplied.
struct ColorComponents {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;
    bool operator==(const ColorComponents&) const = default;
};

/// An immutable colour. Components are kept as the 64-bit floats they were given as, held to 0 to 1.
/// A semantic colour answers for the look of the moment, so it may be kept and drawn in either. Any thread.
class KX_EXPORT NSColor : public Subclass<NSColor, NSObject> {
  public:
    [[nodiscard]] static std::shared_ptr<NSColor> colorWithRed(double red, double green, double blue,
                                                               double alpha);
    [[nodiscard]] static std::shared_ptr<NSColor> colorWithWhite(double white, double alpha);
    /// A colour that has one value per look.
    [[nodiscard]] static std::shared_ptr<NSColor> colorWithLight(ColorComponents light, ColorComponents dark);

    [[nodiscard]] static std::shared_ptr<NSColor> clearColor();  ///< all four components 0
    [[nodiscard]] static std::shared_ptr<NSColor> blackColor();
    [[nodiscard]] static std::shared_ptr<NSColor> whiteColor();

    // Semantic colours. Text colours keep a contrast of 4.5 to 1 and more on both backgrounds in both looks.
    [[nodiscard]] static std::shared_ptr<NSColor> windowBackgroundColor();
    [[nodiscard]] static std::shared_ptr<NSColor> controlBackgroundColor();  ///< of text fields and lists
    [[nodiscard]] static std::shared_ptr<NSColor> textColor();
    [[nodiscard]] static std::shared_ptr<NSColor> secondaryLabelColor();
    [[nodiscard]] static std::shared_ptr<NSColor> placeholderTextColor();
    [[nodiscard]] static std::shared_ptr<NSColor> controlColor();  ///< the face of a push button
    [[nodiscard]] static std::shared_ptr<NSColor> separatorColor();
    [[nodiscard]] static std::shared_ptr<NSColor> controlAccentColor();
    [[nodiscard]] static std::shared_ptr<NSColor>
    alternateSelectedControlTextColor();  ///< text on the accent

    [[nodiscard]] ColorComponents components() const noexcept { return components(currentAppearance()); }
    [[nodiscard]] ColorComponents components(NSAppearance appearance) const noexcept {
        return appearance == NSAppearance::Dark ? dark_ : light_;
    }
    [[nodiscard]] double redComponent() const noexcept { return components().red; }
    [[nodiscard]] double greenComponent() const noexcept { return components().green; }
    [[nodiscard]] double blueComponent() const noexcept { return components().blue; }
    [[nodiscard]] double alphaComponent() const noexcept { return components().alpha; }

    /// The same colour with another opacity.
    [[nodiscard]] std::shared_ptr<NSColor> colorWithAlphaComponent(double alpha) const;

    [[nodiscard]] std::string description() const override;
    /// Equal in both looks.
    [[nodiscard]] bool isEqual(const NSObject& other) const override;

    bool init(ColorComponents light, ColorComponents dark);

  protected:
    NSColor() = default;

  private:
    ColorComponents light_;
    ColorComponents dark_;
};

}  // namespace kx
