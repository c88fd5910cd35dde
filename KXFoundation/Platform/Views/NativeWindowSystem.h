// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include <KXFoundation/Platform/Views/WindowModule.h>
#include <KXFoundation/Platform/Views/WindowSurface.h>

namespace kx {

class NativeSurface;

/// Windows on the desktop's display, X11 or Wayland, through the window module. The module is opened for the
/// first window; events arrive through the main thread's EventLoop. Main thread.
class KX_EXPORT NativeWindowSystem final : public WindowSystem,
                                           public std::enable_shared_from_this<NativeWindowSystem> {
  public:
    NativeWindowSystem() = default;
    /// Over that module instead of the one beside the library.
    explicit NativeWindowSystem(const WindowModule& module) : module_(&module) {}
    ~NativeWindowSystem() override;

    /// None, and one log line from the module, if there is no display.
    [[nodiscard]] std::shared_ptr<WindowSurface> makeSurface(NSRect frame, Handler handler) override;
    [[nodiscard]] std::optional<NSSize> mainScreenSize() override;

  private:
    friend class NativeSurface;

    [[nodiscard]] bool open();
    void find();
    void takeEvents();
    void dispatch(const WindowModuleEvent& event);
    void followHeldKey(const WindowModuleEvent& event);
    void turnForHeldKey();
    void closeAll();

    const WindowModule* module_ = nullptr;
    bool tried_ = false;  // to open the module
    bool listens_ = false;
    bool keyIsHeld_ = false;
    bool turnsForKey_ = false;  // a timer is under way
    int beforeWait_ = 0;
    int descriptor_ = -1;                               // that the loop watches
    std::map<std::uint32_t, NativeSurface*> surfaces_;  // each takes itself out when it dies
};

}  // namespace kx
