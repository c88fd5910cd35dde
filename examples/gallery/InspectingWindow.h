// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

namespace gallery {

/// A window that tells about its views: a click with Control held shows the class and frame of what is under
/// it, in a line at the bottom, and writes the tree of views to standard output. Every other event goes its
/// usual way.
class InspectingWindow : public kx::Subclass<InspectingWindow, kx::NSWindow> {
  public:
    void sendEvent(const kx::NSEvent& event) override;

  private:
    void inspect(kx::NSPoint point);

    std::weak_ptr<kx::NSTextField> line_;
};

}  // namespace gallery
