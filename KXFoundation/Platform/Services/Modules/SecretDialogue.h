// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "BusConversation.h"

namespace kx {

inline constexpr const char* kSecretService = "org.freedesktop.secrets";  // on the bus

/// Has the Secret Service show the dialogue at the path and waits until the person has ended it; false if
/// they dismissed it, if the caller was gone when they had not, or at once if another dialogue is open.
bool waitForDialogue(BusConversation& talk, const std::string& path);

}  // namespace kx
