// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kx {

/// How a question to a service on a message bus ended.
enum class DesktopReply : std::int32_t {
    Answered,
    NoBus,      ///< nobody listens at the bus's address
    NoService,  ///< the bus has no such service, nor can it start one
    Refused,    ///< the service answered with an error
    TimedOut,   ///< no answer within the time given
};

}  // namespace kx
