#include "BusQuestion.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <gio/gio.h>

namespace kx {

namespace {

template <auto Release>
struct Releases {
    void operator()(auto* object) const { Release(object); }
};
using Connection = std::unique_ptr<GDBusConnection, Releases<g_object_unref>>;
using Cancellable = std::unique_ptr<GCancellable, Releases<g_object_unref>>;
using Failure = std::unique_ptr<GError, Releases<g_error_free>>;
using Values = std::unique_ptr<GVariant, Releases<g_variant_unref>>;
using Text = std::unique_ptr<char, Releases<g_free>>;

bool says(const Failure& failure, GDBusError error) {
    return g_error_matches(failure.get(), G_DBUS_ERROR, error);
}

DesktopReply replyFor(const Failure& failure) {
    for (const GDBusError none : {G_DBUS_ERROR_SERVICE_UNKNOWN, G_DBUS_ERROR_NAME_HAS_NO_OWNER,
                                  G_DBUS_ERROR_UNKNOWN_OBJECT, G_DBUS_ERROR_UNKNOWN_INTERFACE,
                                  G_DBUS_ERROR_UNKNOWN_METHOD, G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND}) {
        if (says(failure, none)) return DesktopReply::NoService;
    }
    const bool isLate = says(failure, G_DBUS_ERROR_NO_REPLY) || says(failure, G_DBUS_ERROR_TIMEOUT) ||
                        g_error_matches(failure.get(), G_IO_ERROR, G_IO_ERROR_TIMED_OUT) ||
                        g_error_matches(failure.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED);
    return isLate ? DesktopReply::TimedOut : DesktopReply::Refused;
}

/// Shared by who asks and the thread that talks to the bus, which may outlive the wait.
struct Exchange {
    BusQuestion question;
    Values arguments;
    int timeoutMilliseconds;
    Cancellable cancellable{g_cancellable_new()};

    std::mutex mutex;
    std::condition_variable ended;
    bool isOver = false;  // the rest is written before and read after
    DesktopReply reply = DesktopReply::NoBus;
    Values answer;
    std::string refusal;

    void talk();
    void call(GDBusConnection& bus);
};

void Exchange::call(GDBusConnection& bus) {
    GError* raw = nullptr;
    answer.reset(g_dbus_connection_call_sync(&bus, question.service.c_str(), question.path.c_str(),
                                             question.interface.c_str(), question.method.c_str(),
                                             arguments.get(), nullptr, G_DBUS_CALL_FLAGS_NONE,
                                             timeoutMilliseconds, cancellable.get(), &raw));
    if (answer) {
        reply = DesktopReply::Answered;
        return;
    }
    const Failure failure(raw);
    reply = replyFor(failure);
    if (const Text name{g_dbus_error_get_remote_error(failure.get())}) refusal = name.get();
}

void Exchange::talk() {
    // A connection of our own: the shared one of GIO ends the program when the bus goes away.
    constexpr auto kFlags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GError* raw = nullptr;
    const Connection bus(g_dbus_connection_new_for_address_sync(question.bus.c_str(), kFlags, nullptr,
                                                                cancellable.get(), &raw));
    const Failure failure(raw);
    if (bus) call(*bus);
    const bool isAnswered = reply == DesktopReply::Answered;
    {
        const std::lock_guard lock(mutex);
        isOver = true;
        ended.notify_all();
    }
    if (isAnswered) std::this_thread::sleep_for(question.staysFor);
}

}  // namespace

DesktopReply ask(BusQuestion question, std::uint32_t timeoutMilliseconds, GVariant** answer,
                 std::string* refusal) {
    const auto exchange = std::make_shared<Exchange>();
    if (question.arguments) exchange->arguments.reset(g_variant_ref_sink(question.arguments));
    exchange->question = std::move(question);
    exchange->timeoutMilliseconds = static_cast<int>(timeoutMilliseconds);
    try {
        std::thread([exchange] { exchange->talk(); }).detach();
    } catch (const std::system_error&) {
        return DesktopReply::TimedOut;
    }

    std::unique_lock lock(exchange->mutex);
    const bool isOver = exchange->ended.wait_for(lock, std::chrono::milliseconds(timeoutMilliseconds),
                                                 [&] { return exchange->isOver; });
    if (!isOver) {
        g_cancellable_cancel(exchange->cancellable.get());
        return DesktopReply::TimedOut;
    }
    if (answer) *answer = exchange->answer.release();
    if (refusal) *refusal = exchange->refusal;
    return exchange->reply;
}

}  // namespace kx
