// The desktop's 12/24-hour setting, read and followed through the settings portal, else through its own
// schema.

#include <string>

#include <gio/gio.h>

#include <KXFoundation/Platform/Services/DesktopClockFormat.h>

#include "DesktopServices.h"

namespace kx {

namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettings = "org.freedesktop.portal.Settings";
constexpr int kPatienceMilliseconds = 10'000;  // the portal may have to be started first; nobody waits for it

// Numbers of ClockFormat.
constexpr std::uint32_t kUnset = 0, kTwelveHour = 1, kTwentyFourHour = 2;

/// "12h", "24h" or a boolean that is true for 24 hours, in whatever variants they come.
std::uint32_t formatOf(GVariant* value) {
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_VARIANT)) {
        GVariant* const inner = g_variant_get_variant(value);
        const std::uint32_t format = formatOf(inner);
        g_variant_unref(inner);
        return format;
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) {
        return g_variant_get_boolean(value) ? kTwentyFourHour : kTwelveHour;
    }
    if (!g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)) return kUnset;
    const std::string text = g_variant_get_string(value, nullptr);
    return text == "12h" ? kTwelveHour : text == "24h" ? kTwentyFourHour : kUnset;
}

/// One setting that is followed, on a thread of its own with a loop of its own.
class FollowedKey {
  public:
    FollowedKey(const char* address, const char* schema, const char* key, DesktopClockFormat::Changed changed,
                void* context)
        : address_(address), schema_(schema), key_(key), changed_(changed), changedContext_(context) {
        thread_ = g_thread_new("kx-clock-format", &FollowedKey::run, this);
    }
    ~FollowedKey() {
        g_cancellable_cancel(cancel_);
        GSource* const quit = g_idle_source_new();
        g_source_set_callback(quit, &FollowedKey::quit, loop_, nullptr);
        g_source_attach(quit, context_);
        g_source_unref(quit);
        g_thread_join(thread_);
        g_object_unref(cancel_);
        g_main_loop_unref(loop_);
        g_main_context_unref(context_);
    }
    FollowedKey(const FollowedKey&) = delete;
    FollowedKey& operator=(const FollowedKey&) = delete;

  private:
    static gboolean quit(void* loop) {
        g_main_loop_quit(static_cast<GMainLoop*>(loop));
        return G_SOURCE_REMOVE;
    }

    static void* run(void* self) {
        static_cast<FollowedKey*>(self)->follow();
        return nullptr;
    }

    void follow() {
        g_main_context_push_thread_default(context_);  // signals arrive in our loop
        const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        GDBusConnection* const bus =
            g_dbus_connection_new_for_address_sync(address_.c_str(), flags, nullptr, cancel_, nullptr);
        const guint subscription = bus ? subscribe(bus) : 0;
        GSettings* const settings = bus && askPortal(bus) ? nullptr : openSchema();
        g_main_loop_run(loop_);
        if (settings) g_object_unref(settings);
        if (bus) {
            g_dbus_connection_signal_unsubscribe(bus, subscription);
            g_object_unref(bus);
        }
        g_main_context_pop_thread_default(context_);
    }

    guint subscribe(GDBusConnection* bus) {
        return g_dbus_connection_signal_subscribe(bus, kPortal, kSettings, "SettingChanged", kPortalPath,
                                                  schema_.c_str(), G_DBUS_SIGNAL_FLAGS_NONE,
                                                  &FollowedKey::portalChanged, this, nullptr);
    }

    static void portalChanged(GDBusConnection*, const char*, const char*, const char*, const char*,
                              GVariant* arguments, void* self) {
        auto& followed = *static_cast<FollowedKey*>(self);
        if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(ssv)"))) return;
        const char* key = nullptr;
        GVariant* value = nullptr;
        g_variant_get(arguments, "(&s&sv)", nullptr, &key, &value);
        if (followed.key_ == key) followed.tell(value);
        g_variant_unref(value);
    }

    bool askPortal(GDBusConnection* bus) {
        GVariant* const answer = g_dbus_connection_call_sync(
            bus, kPortal, kPortalPath, kSettings, "Read",
            g_variant_new("(ss)", schema_.c_str(), key_.c_str()), G_VARIANT_TYPE("(v)"),
            G_DBUS_CALL_FLAGS_NONE, kPatienceMilliseconds, cancel_, nullptr);
        if (!answer) return false;
        GVariant* const value = g_variant_get_child_value(answer, 0);
        tell(value);
        g_variant_unref(value);
        g_variant_unref(answer);
        return true;
    }

    /// Null where the schema or its key is not installed; to ask for such a one would end the process.
    GSettings* openSchema() {
        GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
        GSettingsSchema* const found =
            source ? g_settings_schema_source_lookup(source, schema_.c_str(), TRUE) : nullptr;
        if (!found) return nullptr;
        GSettings* settings = nullptr;
        if (g_settings_schema_has_key(found, key_.c_str())) {
            settings = g_settings_new_full(found, nullptr, nullptr);
            g_signal_connect(settings, ("changed::" + key_).c_str(), G_CALLBACK(&FollowedKey::schemaChanged),
                             this);
            schemaChanged(settings, key_.c_str(), this);  // a key tells of its changes once it has been read
        }
        g_settings_schema_unref(found);
        return settings;
    }

    static void schemaChanged(GSettings* settings, const char* key, void* self) {
        GVariant* const value = g_settings_get_value(settings, key);
        static_cast<FollowedKey*>(self)->tell(value);
        g_variant_unref(value);
    }

    void tell(GVariant* value) { changed_(changedContext_, formatOf(value)); }

    const std::string address_, schema_, key_;
    const DesktopClockFormat::Changed changed_;
    void* const changedContext_;
    GCancellable* const cancel_ = g_cancellable_new();
    GMainContext* const context_ = g_main_context_new();
    GMainLoop* const loop_ = g_main_loop_new(context_, FALSE);
    GThread* thread_;
};

void* follow(const char* address, const char* schema, const char* key, DesktopClockFormat::Changed changed,
             void* context) {
    return new FollowedKey(address, schema, key, changed, context);
}

void stop(void* following) {
    delete static_cast<FollowedKey*>(following);
}

}  // namespace

const DesktopClockFormat kDesktopClockFormat{.follow = &follow, .stop = &stop};

}  // namespace kx
