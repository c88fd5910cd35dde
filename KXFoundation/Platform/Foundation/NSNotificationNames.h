// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Foundation/NSNotificationName.h>

namespace kx {

/// Posted on the main thread when one of the application's windows gains focus and none had it before.
inline constinit const NSNotificationName NSApplicationWillBecomeActiveNotification{
    "NSApplicationWillBecomeActiveNotification"};

}  // namespace kx
