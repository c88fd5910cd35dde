// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// A screen as it was when it was asked for. Main thread.
class KX_EXPORT NSScreen : public Subclass<NSScreen, NSObject> {
  public:
    /// The desktop's first screen; none without a display.
    [[nodiscard]] static std::shared_ptr<NSScreen> mainScreen();

    /// Points; the origin is the top left corner.
    [[nodiscard]] NSRect frame() const noexcept { return frame_; }

    bool init(NSRect frame);

  protected:
    NSScreen() = default;

  private:
    NSRect frame_;
};

}  // namespace kx
