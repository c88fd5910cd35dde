// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Graphics/NSTextAlignment.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSCoder;
class NSTextView;

/// Mirrors a text view in a right-to-left language: its alignment setter and both initialisers are exchanged
/// with the library's when the library is loaded, so that init() and setAlignment() mirror by themselves. The
/// operations here are the other ends of the exchange: they reach what the platform itself does. A view that
/// exists keeps its alignment when the language changes.
struct KX_EXPORT NSTextView_RTL {
    NSTextView_RTL() = delete;

    /// Sets the alignment as it is, unmirrored.
    static void rtl_setTextAlignment(const std::shared_ptr<NSTextView>& view, NSTextAlignment alignment);
    /// Run the platform's initialiser on a view that none has run on yet; answer it, or none if that fails.
    static std::shared_ptr<NSTextView> rtl_initWithFrame(const std::shared_ptr<NSTextView>& view,
                                                         NSRect frame);
    static std::shared_ptr<NSTextView> rtl_initWithCoder(const std::shared_ptr<NSTextView>& view,
                                                         NSCoder& coder);
};

}  // namespace kx
