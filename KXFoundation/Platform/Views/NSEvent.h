// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>

namespace kx {

/// Plain mouse events are those of the primary button, right ones those of the secondary, other ones those of
/// every further button.
enum class NSEventType : std::uint8_t {
    MouseDown,
    MouseDragged,
    MouseUp,
    MouseMoved,
    RightMouseDown,
    RightMouseUp,
    OtherMouseDown,
    OtherMouseUp,
    ScrollWheel,
    KeyDown,
    KeyUp,
};

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
    int buttonNumber = 0;      ///< of mouse buttons: 0 primary, 1 secondary, 2 middle, from 3 on the rest
    bool isARepeat = false;    ///< of KeyDown: the key is held
    std::string characters{};  ///< what the key types; "\r", "\t" and " " for Enter, Tab and Space
    NSPoint scrollingDelta{};  ///< of ScrollWheel: lines, towards the right and towards the top
};

// The characters of keys that type nothing.
inline constexpr std::string_view NSUpArrowFunctionKey = "\uF700";
inline constexpr std::string_view NSDownArrowFunctionKey = "\uF701";
inline constexpr std::string_view NSLeftArrowFunctionKey = "\uF702";
inline constexpr std::string_view NSRightArrowFunctionKey = "\uF703";
inline constexpr std::string_view NSHomeFunctionKey = "\uF729";
inline constexpr std::string_view NSEndFunctionKey = "\uF72B";
inline constexpr std::string_view NSPageUpFunctionKey = "\uF72C";
inline constexpr std::string_view NSPageDownFunctionKey = "\uF72D";

/// Whether the key is held with one that makes a command of it, rather than typed.
[[nodiscard]] inline bool isCommand(const NSEvent& event) {
    using enum NSEventModifierFlags;
    return contains(event.modifierFlags, Control) || contains(event.modifierFlags, Option) ||
           contains(event.modifierFlags, Command);
}

}  // namespace kx
