// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

struct NSEvent;

/// Something that events can reach. What it does not handle goes on to the next responder: from a view to its
/// superview, from the content view to the window. Main thread.
class KX_EXPORT NSResponder : public Subclass<NSResponder, NSObject> {
  public:
    /// Views and windows are touched on the main thread only, and die there.
    static constexpr bool kMainThreadOnly = true;

    virtual void mouseDown(const NSEvent& event);
    virtual void mouseDragged(const NSEvent& event);
    virtual void mouseUp(const NSEvent& event);
    virtual void mouseMoved(const NSEvent& event);
    virtual void rightMouseDown(const NSEvent& event);
    virtual void rightMouseUp(const NSEvent& event);
    virtual void otherMouseDown(const NSEvent& event);
    virtual void otherMouseUp(const NSEvent& event);
    virtual void scrollWheel(const NSEvent& event);
    virtual void keyDown(const NSEvent& event);
    virtual void keyUp(const NSEvent& event);

    [[nodiscard]] virtual bool acceptsFirstResponder() const { return false; }
    /// Asked before the keys go here or elsewhere; false refuses.
    virtual bool becomeFirstResponder() { return true; }
    virtual bool resignFirstResponder() { return true; }

    [[nodiscard]] virtual std::shared_ptr<NSResponder> nextResponder() const { return nullptr; }

  protected:
    NSResponder() = default;

  private:
    void passOn(void (NSResponder::*handler)(const NSEvent&), const NSEvent& event);
};

}  // namespace kx
