// SPDX-License-Identifier: MIT

#include "SecretDialogue.h"

#include <atomic>

namespace kx {

namespace {

constexpr const char* kPrompt = "org.freedesktop.Secret.Prompt";
constexpr auto kLongestDialogue = std::chrono::minutes(5);
constexpr guint kLookMilliseconds = 500;

using Context = std::unique_ptr<GMainContext, Releases<g_main_context_unref>>;

/// Waits for the end of a dialogue. There is one at a time: a person is not asked the same thing twice.
class Dialogue {
  public:
    Dialogue(GDBusConnection& bus, const std::string& path) : bus_(bus) {
        g_main_context_push_thread_default(context_.get());  // where the signal is to arrive
        subscription_ = g_dbus_connection_signal_subscribe(&bus, kSecretService, kPrompt, "Completed",
                                                           path.c_str(), nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
                                                           &Dialogue::ended, this, nullptr);
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

}  // namespace

bool waitForDialogue(BusConversation& talk, const std::string& path) {
    if (!Dialogue::mayOpen()) {
        talk.fail(DesktopReply::TimedOut);
        return false;
    }
    Dialogue dialogue(talk.bus(), path);
    if (!talk.call({kSecretService, path, kPrompt, "Prompt", g_variant_new("(s)", ""), "()"})) return false;
    if (!dialogue.waitUntilAccepted()) talk.fail(DesktopReply::Refused);
    if (talk.isAbandoned()) talk.fail(DesktopReply::TimedOut);
    return talk.reply() == DesktopReply::Answered;
}

}  // namespace kx
