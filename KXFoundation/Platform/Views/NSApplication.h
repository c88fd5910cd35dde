// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Views/NSResponder.h>

namespace kx {

class NSWindow;

/// The application: its windows and which of them the user works in. There is one; the thread that asks for
/// it first is the main thread from then on. Main thread, but for isMainThread().
class KX_EXPORT NSApplication : public Subclass<NSApplication, NSResponder> {
  public:
    [[nodiscard]] static std::shared_ptr<NSApplication> sharedApplication();

    /// True on the main thread, and everywhere as long as there is no application. Any thread.
    [[nodiscard]] static bool isMainThread() noexcept;

    /// The windows on the screen, back to front within their levels, and those of higher levels last. The
    /// application keeps these alive. Child windows are their parents' (NSWindow::childWindows).
    [[nodiscard]] const std::vector<std::shared_ptr<NSWindow>>& windows() const noexcept { return windows_; }
    /// The window that the keys go to, none if there is none.
    [[nodiscard]] std::shared_ptr<NSWindow> keyWindow() const { return keyWindow_.lock(); }
    /// The window that the user works in, none if there is none.
    [[nodiscard]] std::shared_ptr<NSWindow> mainWindow() const { return mainWindow_.lock(); }

    /// Draws what is invalid in any window. The main thread's loop does so before it waits.
    void displayIfNeeded();

    /// Runs the main thread's loop until stop() is called or the last window has left the screen. An
    /// application with a loop of its own drains EventLoop::main() instead.
    void run();
    void stop();

    /// Whether a window of the application has the desktop's focus.
    [[nodiscard]] bool isActive() const { return !focusedWindow_.expired(); }

    bool init();
    ~NSApplication() override;

  protected:
    NSApplication() = default;

  private:
    friend class NSWindow;

    void wakeLoop();
    void bringToFront(const std::shared_ptr<NSWindow>& window);
    void makeKey(const std::shared_ptr<NSWindow>& window);
    void takeAway(const NSWindow& window);
    [[nodiscard]] bool shows(const NSWindow& window) const;
    void focusChanged(const std::shared_ptr<NSWindow>& window, bool focused);

    std::vector<std::shared_ptr<NSWindow>> windows_;
    std::weak_ptr<NSWindow> keyWindow_;
    std::weak_ptr<NSWindow> mainWindow_;
    std::weak_ptr<NSWindow> focusedWindow_;  // the desktop's word
    int beforeWait_ = 0;
    bool running_ = false;
    bool wasActive_ = false;  // when the loop last waited, or since
    bool wakesLoop_ = false;  // the loop was woken and has not displayed since
};

}  // namespace kx
