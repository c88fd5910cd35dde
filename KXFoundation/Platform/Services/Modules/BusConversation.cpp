// SPDX-License-Identifier: MIT

#include "BusConversation.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace kx {

namespace {

using Cancellable = std::unique_ptr<GCancellable, Releases<g_object_unref>>;
using Failure = std::unique_ptr<GError, Releases<g_error_free>>;
using Text = std::unique_ptr<char, Releases<g_free>>;

bool says(const GError& failure, GDBusError error) {
    return g_error_matches(&failure, G_DBUS_ERROR, error);
}

bool says(const GError& failure, const char* name) {
    const Text given{name ? g_dbus_error_get_remote_error(&failure) : nullptr};
    return given && std::string(given.get()) == name;
}

DesktopReply replyFor(const GError& failure) {
    for (const GDBusError none : {G_DBUS_ERROR_SERVICE_UNKNOWN, G_DBUS_ERROR_NAME_HAS_NO_OWNER,
                                  G_DBUS_ERROR_UNKNOWN_OBJECT, G_DBUS_ERROR_UNKNOWN_INTERFACE,
                                  G_DBUS_ERROR_UNKNOWN_METHOD, G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND}) {
        if (says(failure, none)) return DesktopReply::NoService;
    }
    const bool isLate = says(failure, G_DBUS_ERROR_NO_REPLY) || says(failure, G_DBUS_ERROR_TIMEOUT) ||
                        g_error_matches(&failure, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) ||
                        g_error_matches(&failure, G_IO_ERROR, G_IO_ERROR_CANCELLED);
    return isLate ? DesktopReply::TimedOut : DesktopReply::Refused;
}

/// Shared by who asks and the thread that talks to the bus, which may outlive the wait.
struct Talk {
    std::string busAddress;
    std::function<void(BusConversation&)> steps;
    const Cancellable cancellable{g_cancellable_new()};

    std::mutex mutex;
    std::condition_variable ended;
    bool isOver = false;  // guarded by mutex, as is
    DesktopReply reply = DesktopReply::NoBus;

    void run();
    void end(DesktopReply result);
    DesktopReply wait(std::chrono::milliseconds limit);
};

void Talk::run() {
    const BusConnection bus = connectToBus(busAddress, cancellable.get());
    if (!bus) return end(DesktopReply::NoBus);
    BusConversation conversation(*bus, *cancellable);
    steps(conversation);
    end(conversation.reply());
    if (conversation.reply() == DesktopReply::Answered)
        std::this_thread::sleep_for(conversation.timeToStay());
}

void Talk::end(DesktopReply result) {
    const std::lock_guard lock(mutex);
    reply = result;
    isOver = true;
    ended.notify_all();
}

DesktopReply Talk::wait(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex);
    if (ended.wait_for(lock, limit, [&] { return isOver; })) return reply;
    g_cancellable_cancel(cancellable.get());
    return DesktopReply::TimedOut;
}

}  // namespace

// The shared connection of GIO ends the program when the bus goes away.
BusConnection connectToBus(const std::string& address, GCancellable* cancellable) {
    constexpr auto kFlags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return BusConnection(
        g_dbus_connection_new_for_address_sync(address.c_str(), kFlags, nullptr, cancellable, nullptr));
}

BusValues BusConversation::call(const BusCall& call) {
    GError* raw = nullptr;
    BusValues answer(g_dbus_connection_call_sync(&bus_, call.service, call.path.c_str(), call.interface,
                                                 call.method, call.arguments,
                                                 call.answerType ? G_VARIANT_TYPE(call.answerType) : nullptr,
                                                 G_DBUS_CALL_FLAGS_NONE, G_MAXINT, &cancellable_, &raw));
    const Failure failure(raw);
    if (!answer && !says(*failure, call.saysNone)) fail(replyFor(*failure));
    return answer;
}

void BusConversation::fail(DesktopReply reply) {
    if (reply_ == DesktopReply::Answered) reply_ = reply;
}

DesktopReply converse(std::string busAddress, std::uint32_t timeoutMilliseconds,
                      std::function<void(BusConversation&)> steps) {
    const auto talk = std::make_shared<Talk>();
    talk->busAddress = std::move(busAddress);
    talk->steps = std::move(steps);
    try {
        std::thread([talk] { talk->run(); }).detach();
    } catch (const std::system_error&) {
        return DesktopReply::TimedOut;
    }
    return talk->wait(std::chrono::milliseconds(timeoutMilliseconds));
}

}  // namespace kx
