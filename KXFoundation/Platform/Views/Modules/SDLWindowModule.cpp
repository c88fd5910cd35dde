// SPDX-License-Identifier: MIT

// Windows, mouse and keyboard through SDL2. A module: it links SDL and no code of ours.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <SDL2/SDL.h>
#include <SDL2/SDL_syswm.h>
#include <wayland-client-core.h>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Views/Modules/X11Scale.h>
#include <KXFoundation/Platform/Views/WindowModule.h>

namespace {

using namespace kx;

/// Of the display's connection.
struct DisplayFacts {
    int descriptor = -1;
    std::unique_ptr<X11Scale> scale;  // of X11 alone
};

/// What an X11 connection does when its server has gone, where the library's own way is to end the program:
/// the windows are told to close, and nothing is asked of the connection any more.
bool displayHasGone = false;

void outliveDisplay(Display* display) {
    const auto stay = [](Display*, void*) { displayHasGone = true; };
    XSetIOErrorHandler([](Display*) { return 0; });  // it would write lines of its own
    XSetIOErrorExitHandler(display, stay, nullptr);
}

DisplayFacts askDisplay() {
    // Any window of ours knows the display; a hidden one serves before the first is made.
    SDL_Window* probe = SDL_CreateWindow("", 0, 0, 1, 1, SDL_WINDOW_HIDDEN);
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    DisplayFacts facts;
    if (probe && SDL_GetWindowWMInfo(probe, &info)) {
        if (info.subsystem == SDL_SYSWM_X11) {
            facts.descriptor = XConnectionNumber(info.info.x11.display);
            facts.scale = std::make_unique<X11Scale>(info.info.x11.display);
            outliveDisplay(info.info.x11.display);
            SDL_EventState(SDL_SYSWMEVENT, SDL_ENABLE);  // X11's own events, which tell of a new scale
        }
        if (info.subsystem == SDL_SYSWM_WAYLAND) facts.descriptor = wl_display_get_fd(info.info.wl.display);
    }
    if (probe) SDL_DestroyWindow(probe);
    return facts;
}

const DisplayFacts& displayFacts() {
    static const DisplayFacts& facts = *new DisplayFacts(askDisplay());
    return facts;
}

/// SDL's units are pixels on X11 and points on Wayland.
double unitsPerPoint() {
    return displayFacts().scale ? displayFacts().scale->value() : 1;
}
double points(double units) {
    return units / unitsPerPoint();
}
int units(double points) {
    return static_cast<int>(std::lround(points * unitsPerPoint()));
}

/// None of a display that has gone: SDL answers none with an error, and asks the display nothing.
SDL_Window* find(std::uint32_t window) {
    return displayHasGone ? nullptr : SDL_GetWindowFromID(window);
}

double scaleOf(SDL_Window* window) {
    int wide = 0;
    int pixels = 0;
    if (!window) return 1;
    SDL_GetWindowSize(window, &wide, nullptr);
    SDL_GetWindowSizeInPixels(window, &pixels, nullptr);
    return wide > 0 && pixels > 0 ? pixels / points(wide) : 1;
}

std::uint32_t modifiersOf(int mod) {
    std::uint32_t bits = 0;
    if (mod & KMOD_SHIFT) bits |= kWindowModifierShift;
    if (mod & KMOD_CTRL) bits |= kWindowModifierControl;
    if (mod & KMOD_ALT) bits |= kWindowModifierAlt;
    if (mod & KMOD_GUI) bits |= kWindowModifierSuper;
    return bits;
}

std::uint32_t keyOf(SDL_Keycode key) {
    constexpr struct {
        SDL_Keycode sdl;
        WindowKey key;
    } kKeys[] = {
        {SDLK_LEFT, WindowKey::Left},       {SDLK_RIGHT, WindowKey::Right},
        {SDLK_UP, WindowKey::Up},           {SDLK_DOWN, WindowKey::Down},
        {SDLK_HOME, WindowKey::Home},       {SDLK_END, WindowKey::End},
        {SDLK_PAGEUP, WindowKey::PageUp},   {SDLK_PAGEDOWN, WindowKey::PageDown},
        {SDLK_KP_ENTER, WindowKey::Return}, {SDLK_DELETE, WindowKey::Delete},
    };
    for (const auto& row : kKeys) {
        if (row.sdl == key) return static_cast<std::uint32_t>(row.key);
    }
    // SDL's other codes are code points, or scan codes with bit 30 set that mean nothing to a control.
    return key > 0 && !(key & SDLK_SCANCODE_MASK) ? static_cast<std::uint32_t>(key) : 0;
}

std::uint32_t buttonOf(std::uint8_t button) {
    switch (button) {
        case SDL_BUTTON_LEFT:
            return 0;
        case SDL_BUTTON_RIGHT:
            return 1;
        case SDL_BUTTON_MIDDLE:
            return 2;
        default:  // counted from 1 there
            return button - 1U;
    }
}

/// Which of several events tells of it depends on the window manager; all of them change these.
bool isPutAway(std::uint32_t window) {
    return (SDL_GetWindowFlags(find(window)) & (SDL_WINDOW_MINIMIZED | SDL_WINDOW_HIDDEN)) != 0;
}

void translateWindowEvent(const SDL_WindowEvent& from, WindowModuleEvent& to) {
    to.window = from.windowID;
    switch (from.event) {
        case SDL_WINDOWEVENT_SIZE_CHANGED:
            to.type = WindowEventType::Resized;
            to.width = points(from.data1);
            to.height = points(from.data2);
            break;
        case SDL_WINDOWEVENT_EXPOSED:
            to.type = WindowEventType::Exposed;
            break;
        case SDL_WINDOWEVENT_FOCUS_GAINED:
            to.type = WindowEventType::FocusGained;
            break;
        case SDL_WINDOWEVENT_FOCUS_LOST:
            to.type = WindowEventType::FocusLost;
            break;
        case SDL_WINDOWEVENT_SHOWN:
        case SDL_WINDOWEVENT_HIDDEN:
        case SDL_WINDOWEVENT_MINIMIZED:
        case SDL_WINDOWEVENT_MAXIMIZED:
        case SDL_WINDOWEVENT_RESTORED:
            to.type = isPutAway(from.windowID) ? WindowEventType::Minimized : WindowEventType::Restored;
            break;
        case SDL_WINDOWEVENT_LEAVE:
            to.type = WindowEventType::MouseLeft;
            break;
        case SDL_WINDOWEVENT_CLOSE:
            to.type = WindowEventType::CloseRequested;
            break;
        default:
            break;
    }
}

void translateButton(const SDL_MouseButtonEvent& from, WindowModuleEvent& to) {
    to.type = from.type == SDL_MOUSEBUTTONDOWN ? WindowEventType::MouseDown : WindowEventType::MouseUp;
    to.window = from.windowID;
    to.x = points(from.x);
    to.y = points(from.y);
    to.button = buttonOf(from.button);
    to.clicks = from.clicks;
    to.modifiers = modifiersOf(SDL_GetModState());
}

void translateKey(const SDL_KeyboardEvent& from, WindowModuleEvent& to) {
    to.type = from.type == SDL_KEYDOWN ? WindowEventType::KeyDown : WindowEventType::KeyUp;
    to.window = from.windowID;
    to.key = keyOf(from.keysym.sym);
    to.modifiers = modifiersOf(from.keysym.mod);
    to.isRepeat = from.repeat != 0;
}

/// False for what no window of ours needs to hear.
bool translate(const SDL_Event& from, WindowModuleEvent& to) {
    to = {};
    switch (from.type) {
        case SDL_WINDOWEVENT:
            translateWindowEvent(from.window, to);
            break;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            translateButton(from.button, to);
            break;
        case SDL_MOUSEMOTION:
            to.type = WindowEventType::MouseMoved;
            to.window = from.motion.windowID;
            to.x = points(from.motion.x);
            to.y = points(from.motion.y);
            to.modifiers = modifiersOf(SDL_GetModState());
            break;
        case SDL_MOUSEWHEEL:
            to.type = WindowEventType::Wheel;
            to.window = from.wheel.windowID;
            to.x = static_cast<double>(from.wheel.preciseX);
            to.y = static_cast<double>(from.wheel.preciseY);
            to.modifiers = modifiersOf(SDL_GetModState());
            break;
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            translateKey(from.key, to);
            break;
        case SDL_TEXTINPUT:
            to.type = WindowEventType::Text;
            to.window = from.text.windowID;
            std::snprintf(to.text, sizeof to.text, "%s", from.text.text);
            break;
        case SDL_QUIT:
            to.type = WindowEventType::Quit;
            break;
        default:
            break;
    }
    return to.type != WindowEventType::Nothing;
}

std::vector<std::uint32_t> openWindows;

std::uint32_t createWindow(const char* title, double width, double height) {
    if (displayHasGone) return 0;
    SDL_Window* window = SDL_CreateWindow(title, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, units(width),
                                          units(height), SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    if (displayFacts().scale) displayFacts().scale->listen();  // SDL chose the root window's events with it
    return window ? openWindows.emplace_back(SDL_GetWindowID(window)) : 0;
}

void destroyWindow(std::uint32_t id) {
    std::erase(openWindows, id);
    SDL_DestroyWindow(find(id));
}

/// A window keeps its size in points where it may. Its contents have other pixels either way: it hears of a
/// size.
void takeScale(std::uint32_t id, double former) {
    SDL_Window* window = find(id);
    if (!window) return;
    int wide = 0;
    int high = 0;
    SDL_GetWindowSize(window, &wide, &high);
    if (!(SDL_GetWindowFlags(window) & (SDL_WINDOW_MAXIMIZED | SDL_WINDOW_FULLSCREEN)))
        SDL_SetWindowSize(window, units(wide / former), units(high / former));
    SDL_GetWindowSize(window, &wide, &high);
    SDL_Event resized{};
    resized.type = SDL_WINDOWEVENT;
    resized.window.windowID = id;
    resized.window.event = SDL_WINDOWEVENT_SIZE_CHANGED;
    resized.window.data1 = wide;
    resized.window.data2 = high;
    SDL_PushEvent(&resized);
}

void followScale(const SDL_SysWMmsg& message) {
    if (message.subsystem != SDL_SYSWM_X11 || !displayFacts().scale) return;
    const double former = unitsPerPoint();
    if (!displayFacts().scale->took(message.msg.x11.event)) return;
    for (const std::uint32_t id : openWindows) takeScale(id, former);
}

/// Once.
bool tellsThatDisplayHasGone(WindowModuleEvent& event) {
    static bool isTold = false;
    if (!displayHasGone || std::exchange(isTold, true)) return false;
    event = {};
    event.type = WindowEventType::Quit;
    return true;
}

bool present(std::uint32_t id, const void* pixels, std::int32_t width, std::int32_t height,
             std::int32_t stride, const WindowModulePixelRect* rects, std::int32_t count) {
    SDL_Window* window = find(id);
    SDL_Surface* surface = window ? SDL_GetWindowSurface(window) : nullptr;
    if (!surface || surface->w != width || surface->h != height) return false;
    std::vector<SDL_Rect> changed;
    for (std::int32_t i = 0; i < count; ++i) {
        const SDL_Rect& rect =
            changed.emplace_back(SDL_Rect{rects[i].x, rects[i].y, rects[i].width, rects[i].height});
        const std::ptrdiff_t x = rect.x, y = rect.y;
        const auto* from = static_cast<const std::uint8_t*>(pixels) + y * stride + x * 4;
        auto* to = static_cast<std::uint8_t*>(surface->pixels) + y * surface->pitch +
                   x * surface->format->BytesPerPixel;
        SDL_ConvertPixels(rect.w, rect.h, SDL_PIXELFORMAT_ARGB8888, from, stride, surface->format->format, to,
                          surface->pitch);
    }
    SDL_UpdateWindowSurfaceRects(window, changed.data(), count);
    return true;
}

const WindowModule kTable{
    .version = WindowModule::kVersion,
    .driver = [] { return SDL_GetCurrentVideoDriver(); },
    .createWindow = createWindow,
    .destroyWindow = destroyWindow,
    .setTitle = [](std::uint32_t id, const char* title) { SDL_SetWindowTitle(find(id), title); },
    .setSize = [](std::uint32_t id, double width,
                  double height) { SDL_SetWindowSize(find(id), units(width), units(height)); },
    .size =
        [](std::uint32_t id, double* width, double* height) {
            int wide = 0;
            int high = 0;
            SDL_GetWindowSize(find(id), &wide, &high);
            *width = points(wide);
            *height = points(high);
        },
    .raise =
        [](std::uint32_t id) {
            if (isPutAway(id)) SDL_RestoreWindow(find(id));
            SDL_RaiseWindow(find(id));
        },
    .scale = [](std::uint32_t id) { return scaleOf(find(id)); },
    .present = present,
    .descriptor = [] { return displayHasGone ? -1 : displayFacts().descriptor; },
    .nextEvent =
        [](WindowModuleEvent* event) {
            SDL_Event from;
            while (!displayHasGone && SDL_PollEvent(&from)) {
                if (from.type == SDL_SYSWMEVENT) followScale(*from.syswm.msg);
                if (translate(from, *event)) return true;
            }
            return tellsThatDisplayHasGone(*event);
        },
    .screenSize =
        [](double* width, double* height) {
            SDL_Rect bounds;
            if (displayHasGone || SDL_GetDisplayBounds(0, &bounds) != 0) return false;
            *width = points(bounds.w);
            *height = points(bounds.h);
            return true;
        },
};

bool hasDisplay() {
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY"}) {
        const char* value = SDL_getenv(variable);
        if (value && *value) return true;
    }
    SDL_SetError("no X11 or Wayland display");
    return false;
}

bool start() {
    if (!hasDisplay()) return false;  // asked first: the drivers would each write a line of their own
    SDL_SetMainReady();
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");  // the application decides
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) return false;
    const char* driver = SDL_GetCurrentVideoDriver();
    if (driver && std::strcmp(driver, "x11") == 0) {
        // A window surface in plain memory: through a renderer it costs 300 ms and 100 MiB at the first
        // frame.
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
        return true;
    }
    if (driver && std::strcmp(driver, "wayland") == 0) return true;  // SDL has no plain surface there
    SDL_QuitSubSystem(SDL_INIT_VIDEO);  // its dummy drivers show nothing to anybody
    SDL_SetError("no X11 or Wayland display");
    return false;
}

}  // namespace

extern "C" KX_EXPORT const void* kxModule(const ModuleHost* host) {
    if (start()) return &kTable;
    const std::string line = std::string("no window can be opened: ") + SDL_GetError();
    host->log(line.c_str());
    return nullptr;
}
