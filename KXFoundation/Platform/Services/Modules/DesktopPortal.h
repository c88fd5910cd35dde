// SPDX-License-Identifier: MIT
#pragma once

#include "BusConversation.h"

namespace kx {

// The desktop portal on the session's bus: one object with an interface for each of its services.
inline constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
inline constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";

}  // namespace kx
