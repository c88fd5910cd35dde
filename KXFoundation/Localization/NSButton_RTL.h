// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSButton;
class NSCoder;

/// Edge insets of a button that are mirrored in a right-to-left language: left and right change places when
/// they are set. They are kept with the button for whoever lays it out; the platform's own button does not
/// draw by them.
struct KX_EXPORT NSButton_RTL {
    NSButton_RTL() = delete;

    static void rtl_setImageEdgeInsets(const std::shared_ptr<NSButton>& button, NSEdgeInsets insets);
    static void rtl_setTitleEdgeInsets(const std::shared_ptr<NSButton>& button, NSEdgeInsets insets);
    static void rtl_setContentEdgeInsets(const std::shared_ptr<NSButton>& button, NSEdgeInsets insets);

    /// What was applied; zeros until set.
    [[nodiscard]] static NSEdgeInsets imageEdgeInsets(const std::shared_ptr<NSButton>& button);
    [[nodiscard]] static NSEdgeInsets titleEdgeInsets(const std::shared_ptr<NSButton>& button);
    [[nodiscard]] static NSEdgeInsets contentEdgeInsets(const std::shared_ptr<NSButton>& button);

    /// Exchanged at load like those of the text controls; they change nothing.
    static std::shared_ptr<NSButton> rtl_initWithFrame(const std::shared_ptr<NSButton>& button, NSRect frame);
    static std::shared_ptr<NSButton> rtl_initWithCoder(const std::shared_ptr<NSButton>& button,
                                                       NSCoder& coder);
};

}  // namespace kx
