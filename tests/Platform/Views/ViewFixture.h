// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Testing/OffscreenWindow.h>

namespace kx::testing {

inline constexpr std::uint32_t kRed = 0xFFFF0000;
inline constexpr std::uint32_t kBlue = 0xFF0000FF;

/// A view with a layer of that colour.
inline std::shared_ptr<NSView> filled(NSRect frame, std::uint32_t color) {
    auto view = make<NSView>(frame);
    view->setWantsLayer(true);
    view->layer()->setBackgroundColor(NSColor::colorWithRed(color == kRed, 0, color == kBlue, 1));
    return view;
}

/// Mirrored where lines run from right to left.
struct FlippingLayout : Subclass<FlippingLayout, NSCollectionViewFlowLayout> {
    bool flipsHorizontallyInOppositeLayoutDirection() override { return true; }
};

}  // namespace kx::testing
