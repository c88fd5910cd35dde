// SPDX-License-Identifier: MIT

#include <algorithm>
#include <string>

#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Testing/OffscreenWindow.h>

namespace kx::testing {

OffscreenWindow::OffscreenWindow(NSSize size, double scale, OffscreenPixels pixels)
    : OffscreenWindow([size] { return make<NSWindow>(NSRect({}, size)); }, scale, pixels) {}

OffscreenWindow::OffscreenWindow(const Opening& open, double scale, OffscreenPixels pixels)
    : system_(std::make_shared<OffscreenWindowSystem>(scale, NSSize{1440, 900}, pixels)), window(open()) {
    window->makeKeyAndOrderFront();
}

OffscreenWindow::~OffscreenWindow() {
    drainQueues();
    const auto open = NSApplication::sharedApplication()->windows();
    for (const auto& each : open) each->close();
}

void OffscreenWindow::click(NSPoint at, int count) const {
    const auto held = window->surface();  // a click may close the window
    auto& target = static_cast<OffscreenSurface&>(*held);
    for (int number = 1; number <= count; ++number) {
        for (const auto type : {NSEventType::MouseDown, NSEventType::MouseUp})
            target.send(NSEvent{.type = type, .locationInWindow = at, .clickCount = number});
    }
}

void OffscreenWindow::click(const NSView& view, int count) const {
    window->displayIfNeeded();  // which lays out
    const NSSize size = view.bounds().size;
    NSPoint at = view.convertPointToView({size.width / 2, size.height / 2}, nullptr);
    for (auto inner = view.window(); inner && inner->parentWindow(); inner = inner->parentWindow()) {
        at.x += inner->frame().origin.x - inner->parentWindow()->frame().origin.x;
        at.y += inner->frame().origin.y - inner->parentWindow()->frame().origin.y;
    }
    click(at, count);
}

void OffscreenWindow::mouse(NSEventType type, NSPoint at) const {
    surface().send(NSEvent{.type = type, .locationInWindow = at});
}

void OffscreenWindow::drag(NSPoint from, NSPoint to) const {
    const auto held = window->surface();
    auto& target = static_cast<OffscreenSurface&>(*held);
    using enum NSEventType;
    target.send(NSEvent{.type = MouseDown, .locationInWindow = from, .clickCount = 1});
    target.send(NSEvent{.type = MouseDragged, .locationInWindow = to, .clickCount = 1});
    target.send(NSEvent{.type = MouseUp, .locationInWindow = to, .clickCount = 1});
}

void OffscreenWindow::scroll(NSPoint at, NSPoint lines) const {
    surface().send(
        NSEvent{.type = NSEventType::ScrollWheel, .locationInWindow = at, .scrollingDelta = lines});
}

void OffscreenWindow::press(std::string_view characters, NSEventModifierFlags flags) const {
    const auto held = window->surface();
    auto& target = static_cast<OffscreenSurface&>(*held);
    for (const auto type : {NSEventType::KeyDown, NSEventType::KeyUp})
        target.send(NSEvent{.type = type, .modifierFlags = flags, .characters = std::string(characters)});
}

void OffscreenWindow::type(std::string_view text) const {
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    while (!text.empty()) {
        const auto next = std::find_if_not(text.begin() + 1, text.end(), continues);
        const auto length = static_cast<std::size_t>(next - text.begin());
        press(text.substr(0, length));
        text.remove_prefix(length);
    }
}

const NSBitmapImageRep& OffscreenWindow::shown() const {
    drainQueues();
    window->displayIfNeeded();
    return *surface().bitmap();
}

std::uint32_t OffscreenWindow::pixel(std::uint32_t x, std::uint32_t y) const {
    return shown().pixelAt(x, y);
}

std::vector<std::uint32_t> OffscreenWindow::pixels() const {
    const auto all = shown().pixels();
    return {all.begin(), all.end()};
}

std::shared_ptr<NSBitmapImageRep> OffscreenWindow::picture() const {
    const NSBitmapImageRep& now = shown();
    auto copy = NSBitmapImageRep::bitmapWithPixels(now.pixelsWide(), now.pixelsHigh());
    if (copy) std::ranges::copy(now.pixels(), copy->pixels().begin());
    return copy;
}

}  // namespace kx::testing
