#pragma once

#include <KXFoundation/Platform/Foundation/NSNotificationName.h>

namespace kx {

/// Posted on the main thread just before the application becomes active: when one of its windows gains focus
/// while none had it.
inline constinit const NSNotificationName NSApplicationWillBecomeActiveNotification{
    "NSApplicationWillBecomeActiveNotification"};

}  // namespace kx
