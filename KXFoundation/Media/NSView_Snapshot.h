// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSImage;
class NSView;

/// Pictures of views. No instances.
struct KX_EXPORT NSView_Snapshot {
    NSView_Snapshot() = delete;

    /// What the view itself draws, without its subviews: a picture of its frame's size over a bitmap with a
    /// pixel to the point, fractions cut off, in the look of its window. None for an absent view and for a
    /// frame that makes no bitmap. Snapshots of one view are taken one after another: its monitor is held,
    /// and given back also when drawing throws.
    [[nodiscard]] static std::shared_ptr<NSImage> snapshot(const std::shared_ptr<NSView>& view);
};

}  // namespace kx
