// SPDX-License-Identifier: MIT

// The desktop's 12/24-hour setting, read and followed through the settings portal, else through its own
// schema.

#include <string>

#include <KXFoundation/Platform/Services/DesktopClockFormat.h>

#include "BusThread.h"
#include "DesktopPortal.h"
#include "DesktopServices.h"

namespace kx {

namespace {

constexpr const char* kSettings = "org.freedesktop.portal.Settings";
constexpr int kPatienceMilliseconds = 10'000;  // the portal may have to be started first; nobody waits for it

using Settings = std::unique_ptr<GSettings, Releases<g_object_unref>>;
using Schema = std::unique_ptr<GSettingsSchema, Releases<g_settings_schema_unref>>;

// Numbers of ClockFormat.
constexpr std::uint32_t kUnset = 0, kTwelveHour = 1, kTwentyFourHour = 2;

/// "12h", "24h" or a boolean that is true for 24 hours, in whatever variants they come.
std::uint32_t formatOf(const BusValues& value) {
    const auto is = [&](const GVariantType* type) { return g_variant_is_of_type(value.get(), type); };
    if (is(G_VARIANT_TYPE_VARIANT)) return formatOf(BusValues(g_variant_get_variant(value.get())));
    if (is(G_VARIANT_TYPE_BOOLEAN)) return g_variant_get_boolean(value.get()) ? kTwentyFourHour : kTwelveHour;
    if (!is(G_VARIANT_TYPE_STRING)) return kUnset;
    const std::string text = g_variant_get_string(value.get(), nullptr);
    return text == "12h" ? kTwelveHour : text == "24h" ? kTwentyFourHour : kUnset;
}

/// One setting that is followed, on a thread of its own with a loop of its own.
class FollowedKey {
  public:
    FollowedKey(const char* address, const char* schema, const char* key, DesktopClockFormat::Changed changed,
                void* context)
        : address_(address), schema_(schema), key_(key), changed_(changed), changedContext_(context) {
        thread_.start("kx-clock-format", [this] { follow(); });
    }

  private:
    void follow() {
        const BusConnection bus = connectToBus(address_, thread_.cancellable());
        const guint subscription = bus ? subscribe(bus.get()) : 0;
        const Settings settings = bus && askPortal(bus.get()) ? nullptr : openSchema();
        thread_.runLoop();
        if (bus) g_dbus_connection_signal_unsubscribe(bus.get(), subscription);
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
        const BusValues owner(value);
        if (followed.key_ == key) followed.tell(owner);
    }

    bool askPortal(GDBusConnection* bus) {
        const BusValues answer(g_dbus_connection_call_sync(
            bus, kPortal, kPortalPath, kSettings, "Read",
            g_variant_new("(ss)", schema_.c_str(), key_.c_str()), G_VARIANT_TYPE("(v)"),
            G_DBUS_CALL_FLAGS_NONE, kPatienceMilliseconds, thread_.cancellable(), nullptr));
        if (answer) tell(BusValues(g_variant_get_child_value(answer.get(), 0)));
        return answer != nullptr;
    }

    /// Null where the schema or its key is not installed; to ask for such a one would end the process.
    Settings openSchema() {
        GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
        const Schema found(source ? g_settings_schema_source_lookup(source, schema_.c_str(), TRUE) : nullptr);
        if (!found || !g_settings_schema_has_key(found.get(), key_.c_str())) return nullptr;
        Settings settings(g_settings_new_full(found.get(), nullptr, nullptr));
        g_signal_connect(settings.get(), ("changed::" + key_).c_str(),
                         G_CALLBACK(&FollowedKey::schemaChanged), this);
        schemaChanged(settings.get(), key_.c_str(),
                      this);  // a key tells of its changes once it has been read
        return settings;
    }

    static void schemaChanged(GSettings* settings, const char* key, void* self) {
        static_cast<FollowedKey*>(self)->tell(BusValues(g_settings_get_value(settings, key)));
    }

    void tell(const BusValues& value) { changed_(changedContext_, formatOf(value)); }

    const std::string address_, schema_, key_;
    const DesktopClockFormat::Changed changed_;
    void* const changedContext_;
    BusThread thread_;  // joined before anything that it uses goes
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
