// SPDX-License-Identifier: MIT

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NativeWindowSystem.h>

namespace kx {

class NativeSurface final : public WindowSurface {
  public:
    NativeSurface(std::shared_ptr<NativeWindowSystem> system, std::uint32_t window,
                  WindowSystem::Handler handler)
        : system_(std::move(system)),
          module_(*system_->module_),
          window_(window),
          handler_(std::move(handler)) {
        system_->surfaces_.emplace(window_, this);
        takeSize();
    }
    ~NativeSurface() override {
        system_->surfaces_.erase(window_);
        module_.destroyWindow(window_);
    }

    [[nodiscard]] NSSize size() const override { return size_; }
    [[nodiscard]] double scale() const override { return module_.scale(window_); }

    void present(const NSBitmapImageRep& bitmap, std::span<const PixelRect> changed) override {
        std::vector<WindowModulePixelRect> rects;
        for (const PixelRect& rect : changed) {
            rects.push_back({static_cast<std::int32_t>(rect.x), static_cast<std::int32_t>(rect.y),
                             static_cast<std::int32_t>(rect.width), static_cast<std::int32_t>(rect.height)});
        }
        const auto wide = static_cast<std::int32_t>(bitmap.pixelsWide());
        module_.present(window_, bitmap.pixels().data(), wide, static_cast<std::int32_t>(bitmap.pixelsHigh()),
                        wide * 4, rects.data(), static_cast<std::int32_t>(rects.size()));
    }

    void setFrame(NSRect frame) override {
        if (frame.size == size_) return;
        module_.setSize(window_, frame.size.width, frame.size.height);
        takeSize();
    }
    void setTitle(std::string_view title) override { module_.setTitle(window_, std::string(title).c_str()); }
    void activate() override { module_.raise(window_); }

    void took(const WindowModuleEvent& event);

  private:
    void takeSize() { module_.size(window_, &size_.width, &size_.height); }
    void tookButton(const WindowModuleEvent& event);
    void tookMouse(NSEventType type, const WindowModuleEvent& event);
    void tookWheel(const WindowModuleEvent& event);
    void tookKey(NSEventType type, const WindowModuleEvent& event);

    const std::shared_ptr<NativeWindowSystem> system_;
    const WindowModule& module_;
    const std::uint32_t window_;
    NSSize size_;
    WindowSystem::Handler handler_;
    NSPoint mouse_;           // where it was last
    bool isPressed_ = false;  // the primary button
    WindowModuleEvent key_;   // the last one, which typed the text that follows
};

namespace {

NSEventModifierFlags modifiersOf(const WindowModuleEvent& event) {
    auto flags = NSEventModifierFlags::None;
    if (event.modifiers & kWindowModifierShift) flags = flags | NSEventModifierFlags::Shift;
    if (event.modifiers & kWindowModifierControl) flags = flags | NSEventModifierFlags::Control;
    if (event.modifiers & kWindowModifierAlt) flags = flags | NSEventModifierFlags::Option;
    if (event.modifiers & kWindowModifierSuper) flags = flags | NSEventModifierFlags::Command;
    return flags;
}

/// What a key types by itself; the characters of all others arrive as Text.
std::string charactersOf(std::uint32_t key, NSEventType type) {
    switch (static_cast<WindowKey>(key)) {
        case WindowKey::Space:  // going down it arrives as Text
            return type == NSEventType::KeyUp ? " " : "";
        case WindowKey::Backspace:
        case WindowKey::Tab:
        case WindowKey::Return:
        case WindowKey::Escape:
        case WindowKey::Delete:
            return std::string(1, static_cast<char>(key));
        case WindowKey::Left:
            return std::string(NSLeftArrowFunctionKey);
        case WindowKey::Right:
            return std::string(NSRightArrowFunctionKey);
        case WindowKey::Up:
            return std::string(NSUpArrowFunctionKey);
        case WindowKey::Down:
            return std::string(NSDownArrowFunctionKey);
        case WindowKey::Home:
            return std::string(NSHomeFunctionKey);
        case WindowKey::End:
            return std::string(NSEndFunctionKey);
        case WindowKey::PageUp:
            return std::string(NSPageUpFunctionKey);
        case WindowKey::PageDown:
            return std::string(NSPageDownFunctionKey);
        default:
            return {};
    }
}

}  // namespace

void NativeSurface::tookButton(const WindowModuleEvent& event) {
    using enum NSEventType;
    const bool isDown = event.type == WindowEventType::MouseDown;
    if (event.button == 0) isPressed_ = isDown;
    switch (event.button) {
        case 0:
            return tookMouse(isDown ? MouseDown : MouseUp, event);
        case 1:
            return tookMouse(isDown ? RightMouseDown : RightMouseUp, event);
        default:
            return tookMouse(isDown ? OtherMouseDown : OtherMouseUp, event);
    }
}

void NativeSurface::tookMouse(NSEventType type, const WindowModuleEvent& event) {
    mouse_ = {event.x, event.y};
    const auto handler = handler_;
    handler(NSEvent{.type = type,
                    .locationInWindow = mouse_,
                    .modifierFlags = modifiersOf(event),
                    .clickCount = static_cast<int>(event.clicks),
                    .buttonNumber = static_cast<int>(event.button)});
}

void NativeSurface::tookWheel(const WindowModuleEvent& event) {
    const auto handler = handler_;
    handler(NSEvent{.type = NSEventType::ScrollWheel,
                    .locationInWindow = mouse_,
                    .modifierFlags = modifiersOf(event),
                    .scrollingDelta = {event.x, event.y}});
}

void NativeSurface::tookKey(NSEventType type, const WindowModuleEvent& event) {
    key_ = event;
    std::string characters = charactersOf(event.key, type);
    if (characters.empty()) return;
    const auto handler = handler_;
    handler(NSEvent{.type = type,
                    .modifierFlags = modifiersOf(event),
                    .isARepeat = event.isRepeat,
                    .characters = std::move(characters)});
}

void NativeSurface::took(const WindowModuleEvent& event) {
    const auto handler = handler_;  // a window closed by its own event takes this surface with it
    switch (event.type) {
        case WindowEventType::MouseDown:
        case WindowEventType::MouseUp:
            return tookButton(event);
        case WindowEventType::MouseMoved:
            return tookMouse(isPressed_ ? NSEventType::MouseDragged : NSEventType::MouseMoved, event);
        case WindowEventType::Wheel:
            return tookWheel(event);
        case WindowEventType::KeyDown:
            return tookKey(NSEventType::KeyDown, event);
        case WindowEventType::KeyUp:
            return tookKey(NSEventType::KeyUp, event);
        case WindowEventType::Text:
            return handler(NSEvent{.type = NSEventType::KeyDown,
                                   .modifierFlags = modifiersOf(key_),
                                   .isARepeat = key_.isRepeat,
                                   .characters = event.text});
        case WindowEventType::Resized:
            size_ = {event.width, event.height};
            return handler(SurfaceResized());
        case WindowEventType::Exposed:
            return handler(SurfaceExposed());
        case WindowEventType::Minimized:
            return handler(SurfaceMiniaturized{true});
        case WindowEventType::Restored:
            return handler(SurfaceMiniaturized{false});
        case WindowEventType::FocusGained:
            return handler(SurfaceFocusChanged{true});
        case WindowEventType::FocusLost:
            return handler(SurfaceFocusChanged{false});
        case WindowEventType::CloseRequested:
            return handler(SurfaceCloseRequested());
        case WindowEventType::Nothing:
        case WindowEventType::MouseLeft:
        case WindowEventType::Quit:
            return;
    }
}

NativeWindowSystem::~NativeWindowSystem() {
    if (!listens_) return;
    EventLoop::main().removeBeforeWait(beforeWait_);
    if (descriptor_ >= 0) EventLoop::main().removeDescriptor(descriptor_);
}

void NativeWindowSystem::find() {
    if (const auto table = openModule<WindowModule>("sdl")) module_ = *table;
}

bool NativeWindowSystem::open() {
    if (!std::exchange(tried_, true) && !module_) find();
    if (!module_ || std::exchange(listens_, true)) return module_ != nullptr;
    // The display's connection reads ahead: what it has read makes its descriptor readable no more.
    beforeWait_ = EventLoop::main().addBeforeWait([this] { takeEvents(); });
    descriptor_ = module_->descriptor();
    if (descriptor_ >= 0) EventLoop::main().addDescriptor(descriptor_, [this] { takeEvents(); });
    return true;
}

std::shared_ptr<WindowSurface> NativeWindowSystem::makeSurface(NSRect frame, Handler handler) {
    if (!open()) return nullptr;
    const std::uint32_t window = module_->createWindow("", frame.size.width, frame.size.height);
    if (window == 0) return nullptr;
    return std::make_shared<NativeSurface>(shared_from_this(), window, std::move(handler));
}

std::optional<NSSize> NativeWindowSystem::mainScreenSize() {
    NSSize size;
    if (!open() || !module_->screenSize(&size.width, &size.height)) return std::nullopt;
    return size;
}

void NativeWindowSystem::takeEvents() {
    const auto held = shared_from_this();  // an event may close the window that keeps this
    WindowModuleEvent event;
    bool any = false;
    while (module_->nextEvent(&event)) {
        any = true;
        dispatch(event);
    }
    if (!any) return;
    // The loop may be about to wait: what the events changed has to be seen before. Showing it may read
    // further events ahead, which the descriptor tells nobody about: hence one more turn.
    NSApplication::sharedApplication()->displayIfNeeded();
    EventLoop::main().perform([] {});
}

void NativeWindowSystem::dispatch(const WindowModuleEvent& event) {
    if (event.type == WindowEventType::Quit) {
        if (descriptor_ >= 0 && module_->descriptor() < 0)  // the display's end would be readable for ever
            EventLoop::main().removeDescriptor(std::exchange(descriptor_, -1));
        return closeAll();
    }
    followHeldKey(event);
    const auto found = surfaces_.find(event.window);  // a window may be gone while its events still come
    if (found != surfaces_.end()) found->second->took(event);
}

/// On Wayland nobody tells of a held key's repeats: the module makes them, as often as it is asked for
/// events.
void NativeWindowSystem::followHeldKey(const WindowModuleEvent& event) {
    using enum WindowEventType;
    if (event.type == KeyUp || event.type == FocusLost) keyIsHeld_ = false;
    if (event.type != KeyDown || std::string_view(module_->driver()) != "wayland") return;
    keyIsHeld_ = true;
    if (!std::exchange(turnsForKey_, true)) turnForHeldKey();
}

/// Every turn of the loop asks for events before it waits.
void NativeWindowSystem::turnForHeldKey() {
    constexpr std::chrono::milliseconds kBetweenTurns{25};
    turnsForKey_ = keyIsHeld_;
    if (!keyIsHeld_) return;
    EventLoop::main().runAt(std::chrono::steady_clock::now().time_since_epoch() + kBetweenTurns,
                            [system = weak_from_this()] {
                                if (const auto held = system.lock()) held->turnForHeldKey();
                            });
}

void NativeWindowSystem::closeAll() {
    while (!surfaces_.empty()) {
        WindowModuleEvent close{};
        close.type = WindowEventType::CloseRequested;
        const std::uint32_t window = surfaces_.begin()->first;
        surfaces_.begin()->second->took(close);
        if (surfaces_.contains(window)) return;  // its owner keeps it open
    }
}

std::shared_ptr<WindowSystem> WindowSystem::makeDefault() {
    return std::make_shared<NativeWindowSystem>();
}

}  // namespace kx
