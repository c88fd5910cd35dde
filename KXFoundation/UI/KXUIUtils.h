// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class CGMutablePath;
class NSAttributedString;
class NSFont;
class NSView;
class NSViewController;

/// Layout of screens and windows, and text operations. No instances.
class KX_EXPORT KXUIUtils {
  public:
    KXUIUtils() = delete;

    // Sizes. Any thread.

    /// The size with 1 for each side that is exactly 0; every other value, negative or a fraction, stays.
    [[nodiscard]] static constexpr NSSize getNotZeroCGSize(NSSize size) noexcept {
        return {size.width == 0 ? 1 : size.width, size.height == 0 ? 1 : size.height};
    }

    // Texts. Any thread.

    /// The size of the text's lines in that font, in points, not rounded up: the widest line, and all their
    /// heights. Lines break at words where they would be wider than `maxWidth`; one that is not above 0 sets
    /// no limit. Zero for an absent text; an absent font is the system font. Asked again for a text and font,
    /// it answers from memory.
    [[nodiscard]] static NSSize sizeWith(std::optional<std::string_view> text,
                                         const std::shared_ptr<NSFont>& font, double maxWidth);
    /// The same without a limit: lines end at line ends only.
    [[nodiscard]] static NSSize sizeWith(std::optional<std::string_view> text,
                                         const std::shared_ptr<NSFont>& font);

    /// Appends the outlines of the text's glyphs, set as one line that is never broken, to the path. The
    /// origin is the start of the line's baseline, y grows downwards: what stands above the baseline is below
    /// 0. A run without a font has the font of the run before it, or, if there is none, the system font.
    /// Nothing happens if either is absent.
    static void renderNSAttributeString(const std::shared_ptr<NSAttributedString>& text,
                                        const std::shared_ptr<CGMutablePath>& path);

    // Screens. Main thread.

    /// The longer and the shorter side of the main screen in points; 0 without a display.
    [[nodiscard]] static double maxScreenLength();
    [[nodiscard]] static double minScreenLength();
    /// Always false.
    [[nodiscard]] static bool isNotchScreen();
    /// Always 0 on every side.
    [[nodiscard]] static NSEdgeInsets safeAreaInsets();
    /// Does nothing.
    static void setCornerForView(const std::shared_ptr<NSView>& view, std::int64_t corner, double radius);

    // Controllers

    /// What getTopViewControllerFrom() answers for the content of the foremost window of normal level, or of
    /// the key window if there is none: always absent. Any thread; off the main queue it waits for that.
    [[nodiscard]] static std::shared_ptr<NSViewController> currentViewController();
    /// The same; main thread.
    [[nodiscard]] static std::shared_ptr<NSViewController> _currentViewController();
    /// Absent for every controller.
    [[nodiscard]] static std::shared_ptr<NSViewController> getTopViewControllerFrom(
        const std::shared_ptr<NSViewController>& controller);
};

}  // namespace kx
