// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <gio/gio.h>

#include <KXFoundation/Platform/Services/DesktopReply.h>

namespace kx {

template <auto Release>
struct Releases {
    void operator()(auto* object) const { Release(object); }
};
using BusValues = std::unique_ptr<GVariant, Releases<g_variant_unref>>;
using BusConnection = std::unique_ptr<GDBusConnection, Releases<g_object_unref>>;

/// A connection of its own to the bus at that address; nullptr if nobody listens there.
BusConnection connectToBus(const std::string& address, GCancellable* cancellable);

/// A call of a method of a service on the bus.
struct BusCall {
    const char* service;
    std::string path;
    const char* interface;
    const char* method;
    GVariant* arguments = nullptr;     ///< floating, taken over; nullptr for none
    const char* answerType = nullptr;  ///< what the answer must be; nullptr for anything
    const char* saysNone =
        nullptr;  ///< the name of an error that is no failure, but an answer without values
};

/// Several calls over one connection. Lives on a thread of its own, which gives up soon after its caller has.
/// The first failed step decides the reply.
class BusConversation {
  public:
    /// The answer's values; nullptr after a failure, and if the service says none.
    BusValues call(const BusCall& call);
    void fail(DesktopReply reply);
    /// Keeps the connection that long after an answer: a service may drop what it began for one that left.
    void stayFor(std::chrono::seconds time) { staysFor_ = time; }

    BusConversation(GDBusConnection& bus, GCancellable& cancellable) : bus_(bus), cancellable_(cancellable) {}
    [[nodiscard]] GDBusConnection& bus() const noexcept { return bus_; }
    [[nodiscard]] bool isAbandoned() const noexcept { return g_cancellable_is_cancelled(&cancellable_); }
    [[nodiscard]] DesktopReply reply() const noexcept { return reply_; }
    [[nodiscard]] std::chrono::seconds timeToStay() const noexcept { return staysFor_; }

  private:
    GDBusConnection& bus_;
    GCancellable& cancellable_;
    DesktopReply reply_ = DesktopReply::Answered;
    std::chrono::seconds staysFor_{0};
};

/// Connects, runs the steps and answers how they went, within the time given, whatever the bus does: then
/// TimedOut, and what the steps still do is of no consequence. They run on another thread, and must own what
/// they use. TimedOut too if there can be no such thread.
DesktopReply converse(std::string busAddress, std::uint32_t timeoutMilliseconds,
                      std::function<void(BusConversation&)> steps);

/// The same for steps that find something out, in their second argument: `found` has it if they are Answered.
template <class Found, std::invocable<BusConversation&, Found&> Steps>
DesktopReply converse(std::string busAddress, std::uint32_t timeoutMilliseconds, Found& found, Steps steps) {
    const auto ours = std::make_shared<Found>();
    const DesktopReply reply =
        converse(std::move(busAddress), timeoutMilliseconds,
                 [ours, steps = std::move(steps)](BusConversation& talk) { steps(talk, *ours); });
    if (reply == DesktopReply::Answered) found = std::move(*ours);
    return reply;
}

}  // namespace kx
