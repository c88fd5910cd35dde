// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include <X11/Xatom.h>
#include <X11/Xresource.h>

#include <KXFoundation/Platform/Views/Modules/X11Scale.h>
#include <KXFoundation/Platform/Views/Modules/XSettings.h>

namespace kx {

namespace {

constexpr double kDotsOfScaleOne = 96;
constexpr double kXSettingsUnit = 1024;  // of "Xft/DPI" to the dot

/// Another program's window may go at any time. An error about it is none of ours, and would end the program.
class IgnoredErrors {
  public:
    explicit IgnoredErrors(Display* display) : display_(display) {
        XSync(display_, False);
        former_ = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    }
    ~IgnoredErrors() {
        XSync(display_, False);
        XSetErrorHandler(former_);
    }
    IgnoredErrors(const IgnoredErrors&) = delete;
    IgnoredErrors& operator=(const IgnoredErrors&) = delete;

  private:
    Display* display_;
    XErrorHandler former_;
};

/// Empty if the window has none.
std::string propertyOf(Display* display, Window window, Atom name) {
    constexpr long kLongest = 1 << 18;  // in units of four bytes
    const IgnoredErrors ignored(display);
    Atom type = None;
    int bits = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* bytes = nullptr;
    if (XGetWindowProperty(display, window, name, 0, kLongest, False, AnyPropertyType, &type, &bits, &count,
                           &left, &bytes) != Success)
        return {};
    std::string property(bits == 8 ? reinterpret_cast<const char*>(bytes) : "", bits == 8 ? count : 0);
    if (bytes) XFree(bytes);
    return property;
}

/// Adds to what the connection listens to on the window, if that is still there.
void listenTo(Display* display, Window window, long events) {
    const IgnoredErrors ignored(display);
    XWindowAttributes present;
    if (XGetWindowAttributes(display, window, &present))
        XSelectInput(display, window, present.your_event_mask | events);
}

}  // namespace

X11Scale::X11Scale(Display* display) : display_(display), root_(DefaultRootWindow(display)) {
    const std::string selection = "_XSETTINGS_S" + std::to_string(DefaultScreen(display));
    selection_ = XInternAtom(display, selection.c_str(), False);
    settings_ = XInternAtom(display, "_XSETTINGS_SETTINGS", False);
    arrival_ = XInternAtom(display, "MANAGER", False);
    XrmInitialize();
    listen();
    value_ = ask();
}

void X11Scale::listen() {
    listenTo(display_, root_, PropertyChangeMask | StructureNotifyMask);
    followManager();
}

bool X11Scale::took(const XEvent& event) {
    const bool isArrival = event.type == ClientMessage && event.xclient.window == root_ &&
                           event.xclient.message_type == arrival_ &&
                           static_cast<Atom>(event.xclient.data.l[1]) == selection_;
    const bool isDeparture = event.type == DestroyNotify && event.xdestroywindow.window == manager_;
    const bool isSetting = event.type == PropertyNotify &&
                           ((event.xproperty.window == manager_ && event.xproperty.atom == settings_) ||
                            (event.xproperty.window == root_ && event.xproperty.atom == XA_RESOURCE_MANAGER));
    if (isArrival || isDeparture) followManager();
    if (!isArrival && !isDeparture && !isSetting) return false;
    const double before = value_;
    value_ = ask();
    return value_ != before;
}

void X11Scale::followManager() {
    manager_ = XGetSelectionOwner(display_, selection_);
    if (manager_ != None) listenTo(display_, manager_, PropertyChangeMask | StructureNotifyMask);
}

double X11Scale::ask() const {
    auto dots = dotsOfManager();
    if (!dots) dots = dotsOfResources();
    const double scale = std::round(dots.value_or(kDotsOfScaleOne) / kDotsOfScaleOne * 8) / 8;
    return std::isfinite(scale) ? std::clamp(scale, 1.0, 4.0) : 1;
}

std::optional<double> X11Scale::dotsOfManager() const {
    if (manager_ == None) return std::nullopt;
    const auto dots = xsettingsInteger(propertyOf(display_, manager_, settings_), "Xft/DPI");
    return dots && *dots > 0 ? std::optional(*dots / kXSettingsUnit) : std::nullopt;
}

std::optional<double> X11Scale::dotsOfResources() const {
    const std::string resources = propertyOf(display_, root_, XA_RESOURCE_MANAGER);
    XrmDatabase database = XrmGetStringDatabase(resources.c_str());
    if (!database) return std::nullopt;
    char* type = nullptr;
    XrmValue value;
    std::optional<double> dots;
    if (XrmGetResource(database, "Xft.dpi", "Xft.Dpi", &type, &value)) dots = std::atof(value.addr);
    XrmDestroyDatabase(database);
    return dots;
}

}  // namespace kx
