// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Graphics/NSAppearance.h>
#include <KXFoundation/Platform/Views/InvalidRegion.h>
#include <KXFoundation/Platform/Views/NSResponder.h>
#include <KXFoundation/Platform/Views/WindowSurface.h>

namespace kx {

class GraphicsContext;
class NSBitmapImageRep;
class NSGestureRecognizer;
class NSView;
class NSViewController;

/// Where a window stands among others of one parent.
enum class NSWindowOrderingMode : std::int8_t { Below = -1, Above = 1 };

/// Windows of a higher level stand in front of those of a lower one.
using NSWindowLevel = std::int64_t;
inline constexpr NSWindowLevel NSNormalWindowLevel = 0;
inline constexpr NSWindowLevel NSFloatingWindowLevel = 3;

/// A window: a tree of views under one content view, which always fills it. It gathers what has to be drawn
/// again and gives its views the user's events. It gets a surface, and its pixels a place to be seen, when it
/// is ordered to the front. Main thread.
class KX_EXPORT NSWindow : public Subclass<NSWindow, NSResponder> {
  public:
    static constexpr NSRect kDefaultFrame{0, 0, 640, 480};

    /// A window without a frame of its own: kDefaultFrame or, as a child window, its parent's content.
    bool init();
    /// Points, on the screen; a side is held to 1 to 16,384. The content view is a plain one.
    bool init(NSRect frame);
    ~NSWindow() override;

    [[nodiscard]] NSRect frame() const noexcept { return frame_; }
    void setFrame(NSRect frame);
    [[nodiscard]] const std::string& title() const noexcept { return title_; }
    void setTitle(std::string_view title);

    /// None if it was taken out of the window.
    [[nodiscard]] std::shared_ptr<NSView> contentView() const { return contentView_; }
    /// Sets the view's frame to the whole window. None leaves the window empty.
    void setContentView(const std::shared_ptr<NSView>& view);
    [[nodiscard]] const std::shared_ptr<NSViewController>& contentViewController() const noexcept {
        return contentViewController_;
    }
    /// Makes the controller's view the content view; none leaves that as it is.
    void setContentViewController(std::shared_ptr<NSViewController> controller);

    /// Pixels to the point: the surface's, or 1 before there is one.
    [[nodiscard]] double backingScaleFactor() const;
    [[nodiscard]] NSAppearance appearance() const noexcept { return appearance_; }
    void setAppearance(NSAppearance appearance);

    // Child windows

    /// Shows the window inside this one, over its content and over or under its other child windows, and
    /// keeps it alive. A child window is drawn on its parent's surface and after it; it is hit before it,
    /// where it draws something. Its background is clear, and it never becomes the key window. Without a
    /// frame of its own it has its parent's, whatever size that takes. It leaves the parent or the place on
    /// the screen that it had. A window that holds this one, or this one itself, is a caller error.
    void addChildWindow(const std::shared_ptr<NSWindow>& child, NSWindowOrderingMode ordered);
    /// Takes the window away from whichever parent it has; this need not be this one.
    void removeChildWindow(const std::shared_ptr<NSWindow>& child);
    /// None for a window of its own.
    [[nodiscard]] std::shared_ptr<NSWindow> parentWindow() const;
    /// Back to front.
    [[nodiscard]] const std::vector<std::shared_ptr<NSWindow>>& childWindows() const noexcept {
        return childWindows_;
    }

    // On the screen

    /// Shows the window in front of the others of its level. Without a display it has no surface, and is
    /// listed all the same. A child window comes to the front among its parent's.
    void orderFront();
    void makeKeyAndOrderFront();
    /// Takes the window from the screen or from its parent and, unless somebody else holds it, destroys it.
    void orderOut();
    void close() { orderOut(); }
    /// Whether it is on the screen, covered or not; one that the desktop has put away (minimised) is not.
    [[nodiscard]] bool isVisible() const;
    /// Whether the desktop has put it away: it is not drawn meanwhile.
    [[nodiscard]] bool isMiniaturized() const noexcept { return miniaturized_; }
    [[nodiscard]] NSWindowLevel level() const noexcept { return level_; }
    /// Takes effect when the window is next ordered to the front.
    void setLevel(NSWindowLevel level) noexcept { level_ = level; }
    [[nodiscard]] bool isKeyWindow() const;
    [[nodiscard]] bool isMainWindow() const;
    [[nodiscard]] const std::shared_ptr<WindowSurface>& surface() const noexcept { return surface_; }

    // Events

    /// Finds the view that the event is for and calls it. A drag and its end go to the view that got the
    /// mouse down, the other buttons and the wheel to the view under the mouse.
    virtual void sendEvent(const NSEvent& event);
    /// Where keys go first; the window itself if there is none. A view that has left the window is none.
    [[nodiscard]] std::shared_ptr<NSResponder> firstResponder() const;
    /// False, and nothing changed, if the present one or the new one refuses.
    bool makeFirstResponder(const std::shared_ptr<NSResponder>& responder);
    /// Gives the keys to the next view in the tree's order that takes them, the first one after the last; Tab
    /// and Shift-Tab do so.
    void selectNextKeyView() { selectKeyView(1); }
    void selectPreviousKeyView() { selectKeyView(-1); }
    /// Whether the first responder shows that it has the keys: once the user has moved them there by
    /// keyboard.
    [[nodiscard]] bool showsFocus() const noexcept { return showsFocus_; }
    /// Tab, Shift-Tab, then what the views take as their key equivalent.
    void keyDown(const NSEvent& event) override;

    // Drawing

    /// The content view's superview coordinates, which are the window's.
    void setNeedsDisplay(NSRect rect);
    [[nodiscard]] const InvalidRegion& invalidRegion() const noexcept { return invalid_; }
    /// Lays out, draws what was asked for since the last time, and presents it. What the drawing itself asks
    /// for is left to the next time.
    void displayIfNeeded();

    [[nodiscard]] std::string description() const override;

  protected:
    NSWindow() = default;

  private:
    friend class NSView;

    [[nodiscard]] NSRect bounds() const noexcept { return {{0, 0}, frame_.size}; }
    void didShowOrHide();
    void setMiniaturized(bool miniaturized);
    void openSurface();
    void surfaceDid(const SurfaceEvent& event);
    void takeSizeFromSurface();
    void fitContentView();
    [[nodiscard]] bool prepareBacking();
    void redraw(const PixelRect& pixels);
    void layoutIfNeeded();
    void drawTree(GraphicsContext& context, NSRect dirty);
    void drawOnParent(GraphicsContext& context, NSRect dirty);

    [[nodiscard]] bool isInside(const NSWindow& other) const noexcept;
    void detach();
    void fitToParent();
    [[nodiscard]] bool isDrawnAt(NSPoint point);
    [[nodiscard]] std::shared_ptr<NSWindow> childAt(NSPoint point);
    [[nodiscard]] bool sendToChild(const NSEvent& event);

    [[nodiscard]] std::shared_ptr<NSView> viewAt(NSPoint point) const;
    void sendUnder(void (NSResponder::*handler)(const NSEvent&), const NSEvent& event);
    [[nodiscard]] std::shared_ptr<NSView> viewFor(const NSEvent& event);
    void beginTouch(const std::shared_ptr<NSView>& view, const NSEvent& event);
    void endTouch(const NSEvent& event);
    void sendKey(void (NSResponder::*handler)(const NSEvent&), const NSEvent& event);
    void selectKeyView(int step);
    void showFocus(bool shown);
    void wakeLoop() const;

    NSRect frame_ = kDefaultFrame;
    std::string title_;
    NSAppearance appearance_ = NSAppearance::Light;
    std::shared_ptr<NSView> contentView_;
    std::shared_ptr<WindowSurface> surface_;
    std::shared_ptr<NSBitmapImageRep> backing_;
    std::shared_ptr<GraphicsContext> context_;  // on the backing; none while somebody draws
    InvalidRegion invalid_;
    std::shared_ptr<NSViewController> contentViewController_;
    NSWindowLevel level_ = NSNormalWindowLevel;

    NSWindow* parent_ = nullptr;  // cleared by the parent before it dies
    NSPoint originInParent_;
    bool hasOwnFrame_ = false;
    bool miniaturized_ = false;
    std::vector<std::shared_ptr<NSWindow>> childWindows_;

    std::weak_ptr<NSWindow> mouseChild_;  // which child window has the mouse while it is down
    std::weak_ptr<NSView> mouseTarget_;
    std::vector<std::weak_ptr<NSGestureRecognizer>> touched_;
    std::weak_ptr<NSResponder> firstResponder_;
    bool showsFocus_ = false;
};

}  // namespace kx
