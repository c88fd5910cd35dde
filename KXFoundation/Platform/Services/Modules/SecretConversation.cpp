#include "SecretConversation.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace kx {

namespace {

constexpr const char* kBusName = "org.freedesktop.secrets";
constexpr const char* kPrompt = "org.freedesktop.Secret.Prompt";
constexpr auto kLongestDialogue = std::chrono::minutes(5);
constexpr guint kLookMilliseconds = 500;

using Connection = std::unique_ptr<GDBusConnection, Releases<g_object_unref>>;
using Cancellable = std::unique_ptr<GCancellable, Releases<g_object_unref>>;
using Context = std::unique_ptr<GMainContext, Releases<g_main_context_unref>>;
using Failure = std::unique_ptr<GError, Releases<g_error_free>>;

DesktopReply replyFor(const GError& error) {
    for (const GDBusError none : {G_DBUS_ERROR_SERVICE_UNKNOWN, G_DBUS_ERROR_NAME_HAS_NO_OWNER,
                                  G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND}) {
        if (g_error_matches(&error, G_DBUS_ERROR, none)) return DesktopReply::NoService;
    }
    const bool isLate = g_error_matches(&error, G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY) ||
                        g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) ||
                        g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
    return isLate ? DesktopReply::TimedOut : DesktopReply::Refused;
}

/// Waits for the end of a dialogue. There is one at a time: a person is not asked the same thing twice.
class Dialogue {
  public:
    Dialogue(GDBusConnection& bus, const std::string& path) : bus_(bus) {
        g_main_context_push_thread_default(context_.get());  // where the signal is to arrive
        subscription_ =
            g_dbus_connection_signal_subscribe(&bus, kBusName, kPrompt, "Completed", path.c_str(), nullptr,
                                               G_DBUS_SIGNAL_FLAGS_NONE, &Dialogue::ended, this, nullptr);
        timer_ = g_timeout_source_new(kLookMilliseconds);  // to look for what no signal tells
        g_source_set_callback(
            timer_, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr, nullptr);
        g_source_attach(timer_, context_.get());
    }
    ~Dialogue() {
        g_source_destroy(timer_);
        g_source_unref(timer_);
        g_dbus_connection_signal_unsubscribe(&bus_, subscription_);
        g_main_context_pop_thread_default(context_.get());
        isOpen_ = false;
    }
    Dialogue(const Dialogue&) = delete;
    Dialogue& operator=(const Dialogue&) = delete;

    /// To be asked first; false if another one is open.
    static bool mayOpen() { return !isOpen_.exchange(true); }

    [[nodiscard]] bool waitUntilAccepted() {
        const auto latest = std::chrono::steady_clock::now() + kLongestDialogue;
        while (!isOver_ && !g_dbus_connection_is_closed(&bus_) && std::chrono::steady_clock::now() < latest)
            g_main_context_iteration(context_.get(), TRUE);
        return isOver_ && !dismissed_;
    }

  private:
    static void ended(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                      GVariant* values, gpointer self) {
        auto& dialogue = *static_cast<Dialogue*>(self);
        dialogue.isOver_ = true;
        if (!g_variant_is_of_type(values, G_VARIANT_TYPE("(bv)"))) return;
        gboolean dismissed = TRUE;
        g_variant_get(values, "(bv)", &dismissed, nullptr);
        dialogue.dismissed_ = dismissed;
    }

    inline static std::atomic<bool> isOpen_{false};

    GDBusConnection& bus_;
    const Context context_{g_main_context_new()};
    guint subscription_ = 0;
    GSource* timer_ = nullptr;
    bool isOver_ = false;
    bool dismissed_ = true;
};

/// Shared by who asks and the thread that talks to the bus, which may outlive the wait.
struct Talk {
    std::string busAddress;
    std::function<void(SecretConversation&)> steps;
    const Cancellable cancellable{g_cancellable_new()};

    std::mutex mutex;
    std::condition_variable ended;
    bool isOver = false;  // guarded by mutex, as is
    DesktopReply reply = DesktopReply::NoBus;

    void run();
    DesktopReply wait(std::chrono::milliseconds limit);
};

void Talk::run() {
    // A connection of our own: the shared one of GIO ends the program when the bus goes away.
    constexpr auto kFlags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GError* raw = nullptr;
    const Connection bus(
        g_dbus_connection_new_for_address_sync(busAddress.c_str(), kFlags, nullptr, cancellable.get(), &raw));
    const Failure failure(raw);
    DesktopReply result = DesktopReply::NoBus;
    if (bus) {
        SecretConversation conversation(*bus, *cancellable);
        steps(conversation);
        result = conversation.reply();
    }
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

BusValues SecretConversation::call(const Call& call) {
    GError* raw = nullptr;
    BusValues answer(g_dbus_connection_call_sync(&bus_, kBusName, call.path.c_str(), call.interface,
                                                 call.method, call.arguments, G_VARIANT_TYPE(call.answerType),
                                                 G_DBUS_CALL_FLAGS_NONE, G_MAXINT, &cancellable_, &raw));
    if (!answer) {
        const Failure failure(raw);
        fail(replyFor(*failure));
    }
    return answer;
}

bool SecretConversation::waitForDialogue(const std::string& path) {
    if (!Dialogue::mayOpen()) {
        fail(DesktopReply::TimedOut);
        return false;
    }
    Dialogue dialogue(bus_, path);
    if (!call({path, kPrompt, "Prompt", g_variant_new("(s)", ""), "()"})) return false;
    if (!dialogue.waitUntilAccepted()) fail(DesktopReply::Refused);
    if (g_cancellable_is_cancelled(&cancellable_)) fail(DesktopReply::TimedOut);
    return reply_ == DesktopReply::Answered;
}

void SecretConversation::fail(DesktopReply reply) {
    if (reply_ == DesktopReply::Answered) reply_ = reply;
}

DesktopReply converse(std::string busAddress, std::uint32_t timeoutMilliseconds,
                      std::function<void(SecretConversation&)> steps) {
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
