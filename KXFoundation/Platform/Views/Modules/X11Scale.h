// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

typedef struct _XDisplay Display;
typedef union _XEvent XEvent;

namespace kx {

/// How many pixels an X11 desktop wants to the point. X11 itself knows no scale: desktops say how many dots
/// an inch has, 96 for scale 1, in their settings manager ("Xft/DPI", XSETTINGS) or, where none runs, in the
/// root window's resources ("Xft.dpi"); both may change at any time. Needs the connection's events.
class X11Scale {
  public:
    explicit X11Scale(Display* display);

    /// 1 to 4, in eighths, at which a line of a point has nearly the same pixels everywhere.
    [[nodiscard]] double value() const noexcept { return value_; }
    /// To be called again where the root window's events may have been chosen anew.
    void listen();
    /// Whether the event changed the value. Every event of the connection is to be given.
    bool took(const XEvent& event);

  private:
    void followManager();
    [[nodiscard]] double ask() const;
    [[nodiscard]] std::optional<double> dotsOfManager() const;
    [[nodiscard]] std::optional<double> dotsOfResources() const;

    using Id = unsigned long;  // of a window or an atom

    Display* display_;
    Id root_;
    Id selection_;  // whoever owns it is the settings manager
    Id settings_;
    Id arrival_;
    Id manager_ = 0;
    double value_ = 1;
};

}  // namespace kx
