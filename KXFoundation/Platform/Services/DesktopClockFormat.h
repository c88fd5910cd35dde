// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kx {

/// The module's part that follows the desktop's 12/24-hour setting (Modules/DesktopClockFormat.cpp). Any
/// thread.
struct DesktopClockFormat {
    /// Takes what the setting says, a ClockFormat as a number; called on a thread of the module's own.
    using Changed = void (*)(void* context, std::uint32_t format);

    /// Begins to follow a key of a schema, through the settings portal on that bus or, where it does not know
    /// the key, through the schema itself. `changed` is called when the desktop has answered and after each
    /// change; never if it does not. Returns at once. What it answers goes to `stop`.
    void* (*follow)(const char* busAddress, const char* schema, const char* key, Changed changed,
                    void* context);
    /// Ends it: `changed` is called no more when this returns.
    void (*stop)(void* following);
};

}  // namespace kx
