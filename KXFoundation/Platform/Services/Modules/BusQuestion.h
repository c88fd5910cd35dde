#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include <KXFoundation/Platform/Services/DesktopReply.h>

using GVariant = struct _GVariant;  // GIO's; a header of ours includes no other library's

namespace kx {

/// One call of a method of a service on a message bus.
struct BusQuestion {
    std::string bus;  ///< its address
    std::string service, path, interface, method;
    GVariant* arguments = nullptr;  ///< floating, taken over; null for none
    /// How long the connection stays after an answer: a service may drop what it began for one that left.
    std::chrono::seconds staysFor{0};
};

/// Asks and waits for the answer, but never longer than the time given, even if the bus accepts the
/// connection and then says nothing: then the connection is left to a thread of its own, which gives it up;
/// TimedOut too if there can be no such thread.
/// On Answered `answer`, unless null, gets the reply's values, which the caller unrefs; Refused leaves the
/// error's name in `refusal`, unless null.
DesktopReply ask(BusQuestion question, std::uint32_t timeoutMilliseconds, GVariant** answer = nullptr,
                 std::string* refusal = nullptr);

}  // namespace kx
