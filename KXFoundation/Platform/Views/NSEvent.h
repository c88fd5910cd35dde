#pragma once

#include <cstdint>
#include <string>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>

namespace kx {

enum class NSEventType : std::uint8_t { MouseDown, MouseDragged, MouseUp, MouseMoved, KeyDown, KeyUp };

enum class NSEventModifierFlags : std::uint8_t { None = 0, Shift = 1, Control = 2, Option = 4, Command = 8 };

[[nodiscard]] constexpr NSEventModifierFlags operator|(NSEventModifierFlags a, NSEventModifierFlags b) {
    return static_cast<NSEventModifierFlags>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}
[[nodiscard]] constexpr bool contains(NSEventModifierFlags flags, NSEventModifierFlags flag) {
    return (static_cast<std::uint8_t>(flags) & static_cast<std::uint8_t>(flag)) != 0;
}

/// One thing that the user did in a window.
struct NSEvent {
    NSEventType type = NSEventType::MouseMoved;
    NSPoint locationInWindow{};  ///< in the content view's coordinates
    NSEventModifierFlags modifierFlags = NSEventModifierFlags::None;
    int clickCount = 0;        ///< 1 for a click, 2 for a double click
    bool isARepeat = false;    ///< of KeyDown: the key is held
    std::string characters{};  ///< what the key types; "\r", "\t" and " " for Enter, Tab and Space
};

/// Whether the key is held with one that makes a command of it, rather than typed.
[[nodiscard]] inline bool isCommand(const NSEvent& event) {
    using enum NSEventModifierFlags;
    return contains(event.modifierFlags, Control) || contains(event.modifierFlags, Option) ||
           contains(event.modifierFlags, Command);
}

}  // namespace kx
