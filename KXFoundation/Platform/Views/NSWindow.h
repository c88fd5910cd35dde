#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Graphics/NSAppearance.h>
#include <KXFoundation/Platform/Views/InvalidRegion.h>
#include <KXFoundation/Platform/Views/NSResponder.h>
#include <KXFoundation/Platform/Views/WindowSurface.h>

namespace kx {

class NSBitmapImageRep;
class NSView;

/// A window: a tree of views under one content view, which always fills it. It gathers what has to be drawn
/// again and gives its views the user's events. It gets a surface, and its pixels a place to be seen, when it
/// is ordered to the front. Main thread.
class KX_EXPORT NSWindow : public Subclass<NSWindow, NSResponder> {
  public:
    static constexpr NSRect kDefaultFrame{0, 0, 640, 480};

    /// Points, on the screen; a side is held to 1 to 16,384. The content view is a plain one.
    bool init(NSRect frame = kDefaultFrame);
    ~NSWindow() override;

    [[nodiscard]] NSRect frame() const noexcept { return frame_; }
    void setFrame(NSRect frame);
    [[nodiscard]] const std::string& title() const noexcept { return title_; }
    void setTitle(std::string_view title);

    /// None if it was taken out of the window.
    [[nodiscard]] std::shared_ptr<NSView> contentView() const { return contentView_; }
    /// Sets the view's frame to the whole window. None leaves the window empty.
    void setContentView(const std::shared_ptr<NSView>& view);

    /// Pixels to the point: the surface's, or 1 before there is one.
    [[nodiscard]] double backingScaleFactor() const;
    [[nodiscard]] NSAppearance appearance() const noexcept { return appearance_; }
    void setAppearance(NSAppearance appearance);

    // On the screen

    /// Shows the window in front of the others. Without a display it has no surface, and is listed all the
    /// same.
    void orderFront();
    void makeKeyAndOrderFront();
    /// Takes the window from the screen and, unless somebody else holds it, destroys it.
    void orderOut();
    void close() { orderOut(); }
    [[nodiscard]] bool isVisible() const;
    [[nodiscard]] bool isKeyWindow() const;
    [[nodiscard]] bool isMainWindow() const;
    [[nodiscard]] const std::shared_ptr<WindowSurface>& surface() const noexcept { return surface_; }

    // Events

    /// Finds the view that the event is for and calls it. A drag and its end go to the view that got the
    /// mouse down.
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
    void openSurface();
    void surfaceDid(const SurfaceEvent& event);
    void takeSizeFromSurface();
    void fitContentView();
    [[nodiscard]] bool prepareBacking();
    void redraw(const PixelRect& pixels);
    [[nodiscard]] std::shared_ptr<NSView> viewFor(const NSEvent& event);
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
    InvalidRegion invalid_;
    std::weak_ptr<NSView> mouseTarget_;
    std::weak_ptr<NSResponder> firstResponder_;
    bool showsFocus_ = false;
};

}  // namespace kx
