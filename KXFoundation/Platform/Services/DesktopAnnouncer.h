// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kx {

/// The module's part that tells the desktop's accessibility bus (AT-SPI 2) what is to be read out
/// (Modules/DesktopAnnouncer.cpp). Any thread.
struct DesktopAnnouncer {
    /// Takes why nothing can be announced; called on a thread of the module's own, once at most. Not called
    /// where there is no such bus.
    using Failed = void (*)(void* context, const char* why);

    /// Begins to make the application known to the accessibility bus, whose address the session's bus knows;
    /// it is not started. Returns at once. What it answers goes to `close`.
    void* (*open)(const char* sessionBusAddress, const char* applicationName, Failed failed, void* context);
    /// Has the text announced, or left out while very many are waiting. Returns at once; false if the
    /// connection has ended, or there was none.
    bool (*announce)(void* announcer, const char* text);
    /// Ends it: `failed` is called no more when this returns.
    void (*close)(void* announcer);
};

}  // namespace kx
