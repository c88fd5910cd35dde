// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The table between the library and its window module (Modules/SDLWindowModule.cpp): plain data and C
/// functions, as the module links no code of ours. All of it belongs to the main thread.
namespace kx {

enum class WindowEventType : std::uint32_t {
    Nothing,
    MouseDown,
    MouseUp,
    MouseMoved,  ///< also while a button is held
    MouseLeft,   ///< the pointer left the window
    Wheel,
    KeyDown,
    KeyUp,
    Text,     ///< typed text, after composition
    Resized,  ///< to width x height points
    Exposed,  ///< the contents must be presented again
    FocusGained,
    FocusLost,
    Minimized,  ///< the desktop has put the window away
    Restored,   ///< it has not, or no longer
    CloseRequested,
    Quit,  ///< the display went away or the session ends
};

/// Keys that mean something to controls; every other key arrives as its Unicode code point in lower case.
enum class WindowKey : std::uint32_t {
    Nothing = 0,
    Backspace = 0x08,
    Tab = 0x09,
    Return = 0x0D,
    Escape = 0x1B,
    Space = 0x20,
    Delete = 0x7F,
    Left = 0x110000,  // beyond Unicode
    Right,
    Up,
    Down,
    Home,
    End,
    PageUp,
    PageDown,
};

enum WindowModifier : std::uint32_t {
    kWindowModifierShift = 1,
    kWindowModifierControl = 2,
    kWindowModifierAlt = 4,
    kWindowModifierSuper = 8,
};

struct WindowModuleEvent {
    WindowEventType type = WindowEventType::Nothing;
    std::uint32_t window = 0;  ///< the number that createWindow answered; 0 for Quit
    /// Points from the window's top left corner; for Wheel the lines, to the right and up.
    double x = 0, y = 0;
    double width = 0, height = 0;  ///< of Resized
    std::uint32_t button = 0;     ///< 0 the primary one, 1 the secondary one, 2 the middle one, then the rest
    std::uint32_t clicks = 0;     ///< 1, 2, ... of MouseDown and MouseUp
    std::uint32_t modifiers = 0;  ///< WindowModifier bits
    std::uint32_t key = 0;        ///< a WindowKey or a code point
    bool isRepeat = false;        ///< of KeyDown
    char text[32] = {};           ///< UTF-8, zero-terminated, of Text
};

struct WindowModulePixelRect {
    std::int32_t x, y, width, height;
};

struct WindowModule {
    static constexpr std::uint32_t kVersion = 2;

    std::uint32_t version;
    /// "x11" or "wayland".
    const char* (*driver)();
    /// A window of that size in points, shown; 0 if there can be none.
    std::uint32_t (*createWindow)(const char* title, double width, double height);
    void (*destroyWindow)(std::uint32_t window);
    void (*setTitle)(std::uint32_t window, const char* title);
    void (*setSize)(std::uint32_t window, double width, double height);
    /// What it has got, in points, which may be another size than was asked for.
    void (*size)(std::uint32_t window, double* width, double* height);
    /// To the front, also one that the desktop has put away.
    void (*raise)(std::uint32_t window);
    /// Pixels to the point.
    double (*scale)(std::uint32_t window);
    /// Shows these rectangles of a premultiplied, native-endian ARGB bitmap of the window's pixel size. False
    /// if the window has another size by now: the Resized event is on its way.
    bool (*present)(std::uint32_t window, const void* pixels, std::int32_t width, std::int32_t height,
                    std::int32_t stride, const WindowModulePixelRect* rects, std::int32_t count);
    /// The descriptor that becomes readable when the display has something to say; -1 if it has none, also
    /// once the display has gone.
    int (*descriptor)();
    /// Takes the next event, without waiting; false if there is none. Call until it answers false before
    /// every wait for the descriptor: events may have been read from it already.
    bool (*nextEvent)(WindowModuleEvent* event);
    /// The main screen's size in points; false without one.
    bool (*screenSize)(double* width, double* height);
};

}  // namespace kx
