// SPDX-License-Identifier: MIT

// What is to be read out, told through the accessibility bus: AT-SPI 2, whose interfaces are described in
// https://gitlab.gnome.org/GNOME/at-spi2-core/-/tree/main/xml. A reader asks who speaks, so the application
// is there as one object without children.

#include <atomic>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Services/DesktopAnnouncer.h>

#include "BusConversation.h"
#include "BusThread.h"
#include "DesktopServices.h"

namespace kx {

namespace {

constexpr const char* kRoot = "/org/a11y/atspi/accessible/root";
constexpr const char* kCache = "/org/a11y/atspi/cache";  // readers complain where it is missing
constexpr const char* kNobody = "/org/a11y/atspi/null";
constexpr int kPatienceMilliseconds = 5000;
constexpr int kMostWaiting = 32;

constexpr const char* kInterfaces = R"xml(<node>
<interface name="org.a11y.atspi.Accessible">
  <property name="Name" type="s" access="read"/>
  <property name="Description" type="s" access="read"/>
  <property name="Parent" type="(so)" access="read"/>
  <property name="ChildCount" type="i" access="read"/>
  <property name="Locale" type="s" access="read"/>
  <property name="AccessibleId" type="s" access="read"/>
  <method name="GetChildAtIndex"><arg type="i" direction="in"/><arg type="(so)" direction="out"/></method>
  <method name="GetChildren"><arg type="a(so)" direction="out"/></method>
  <method name="GetIndexInParent"><arg type="i" direction="out"/></method>
  <method name="GetRelationSet"><arg type="a(ua(so))" direction="out"/></method>
  <method name="GetRole"><arg type="u" direction="out"/></method>
  <method name="GetRoleName"><arg type="s" direction="out"/></method>
  <method name="GetLocalizedRoleName"><arg type="s" direction="out"/></method>
  <method name="GetState"><arg type="au" direction="out"/></method>
  <method name="GetAttributes"><arg type="a{ss}" direction="out"/></method>
  <method name="GetApplication"><arg type="(so)" direction="out"/></method>
  <method name="GetInterfaces"><arg type="as" direction="out"/></method>
</interface>
<interface name="org.a11y.atspi.Application">
  <property name="ToolkitName" type="s" access="read"/>
  <property name="Version" type="s" access="read"/>
  <property name="AtspiVersion" type="s" access="read"/>
  <property name="Id" type="i" access="readwrite"/>
</interface>
<interface name="org.a11y.atspi.Cache">
  <method name="GetItems"><arg type="a((so)(so)(so)iiassusau)" direction="out"/></method>
</interface></node>)xml";

/// Where each of them is.
constexpr const char* kPlaces[] = {kRoot, kRoot, kCache};

/// What is the same for every application, in GVariant's text form.
struct Answer {
    std::string_view of;
    const char* value;
};
constexpr Answer kAnswers[] = {
    {"Description", "''"},
    {"ChildCount", "0"},
    {"Locale", "''"},
    {"AccessibleId", "''"},
    {"ToolkitName", "'KXFoundation'"},
    {"Version", "''"},
    {"AtspiVersion", "'2.1'"},
    {"GetChildAtIndex", "(('', objectpath '/org/a11y/atspi/null'),)"},
    {"GetChildren", "(@a(so) [],)"},
    {"GetIndexInParent", "(-1,)"},
    {"GetItems", "(@a((so)(so)(so)iiassusau) [],)"},
    {"GetRelationSet", "(@a(ua(so)) [],)"},
    {"GetRole", "(uint32 75,)"},  // ATSPI_ROLE_APPLICATION
    {"GetRoleName", "('application',)"},
    {"GetLocalizedRoleName", "('application',)"},
    {"GetState", "([uint32 0, 0],)"},
    {"GetAttributes", "(@a{ss} {},)"},
    {"GetInterfaces", "(['org.a11y.atspi.Accessible', 'org.a11y.atspi.Application'],)"},
};

GVariant* answerTo(std::string_view name) {
    for (const Answer& answer : kAnswers) {
        if (answer.of == name) return g_variant_new_parsed(answer.value);
    }
    return nullptr;
}

using Failure = std::unique_ptr<GError, Releases<g_error_free>>;

bool isNobodyThere(const GError& failure) {
    return g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) ||
           g_error_matches(&failure, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
           g_error_matches(&failure, G_IO_ERROR, G_IO_ERROR_CANCELLED);
}

class Announcer {
  public:
    Announcer(const char* address, const char* name, DesktopAnnouncer::Failed failed, void* context)
        : address_(address), name_(usable(name)), failed_(failed), failedContext_(context) {
        thread_.start("kx-announcer", [this] {
            serve();
            hasEnded_ = true;
        });
    }

    bool announce(const char* text) {
        if (hasEnded_) return false;
        if (waiting_.fetch_add(1) < kMostWaiting) {
            thread_.perform([this, usable = usable(text)] {
                --waiting_;
                emit(usable);
            });
        } else {
            --waiting_;
        }
        return true;
    }

  private:
    static std::string usable(const char* text) {
        const std::unique_ptr<char, Releases<g_free>> valid(g_utf8_make_valid(text, -1));
        return valid.get();
    }

    void serve() {
        const BusConnection session = connectToBus(address_, thread_.cancellable());
        if (!session) return;
        const BusValues address =
            call(*session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", nullptr, "(s)");
        if (!address) return;
        const char* text = nullptr;
        g_variant_get(address.get(), "(&s)", &text);
        bus_ = connectToBus(text, thread_.cancellable());
        if (!bus_) return fail("nobody listens at the accessibility bus's address");
        g_signal_connect_swapped(bus_.get(), "closed", G_CALLBACK(&Announcer::closed), this);
        if (makeKnown()) thread_.runLoop();
        g_signal_handlers_disconnect_by_data(bus_.get(), this);
        for (const guint object : objects_) {
            if (object != 0) g_dbus_connection_unregister_object(bus_.get(), object);
        }
        g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
    }

    static void closed(Announcer* self) { self->thread_.endLoop(); }

    /// Null after a failure, which was reported unless nobody is there.
    BusValues call(GDBusConnection& bus, const char* service, const char* path, const char* interface,
                   const char* method, GVariant* arguments, const char* type) {
        GError* raw = nullptr;
        BusValues answer(g_dbus_connection_call_sync(&bus, service, path, interface, method, arguments,
                                                     G_VARIANT_TYPE(type), G_DBUS_CALL_FLAGS_NO_AUTO_START,
                                                     kPatienceMilliseconds, thread_.cancellable(), &raw));
        const Failure failure(raw);
        if (failure && !isNobodyThere(*failure)) fail(failure->message);
        return answer;
    }

    void fail(const char* why) { failed_(failedContext_, why); }

    [[nodiscard]] const char* ownAddress() const { return g_dbus_connection_get_unique_name(bus_.get()); }

    /// Registers the objects and embeds the application among the desktop's.
    bool makeKnown() {
        static constexpr GDBusInterfaceVTable kTable{
            &Announcer::called, &Announcer::propertyRead, &Announcer::propertyWritten, {}};
        const std::unique_ptr<GDBusNodeInfo, Releases<g_dbus_node_info_unref>> node(
            g_dbus_node_info_new_for_xml(kInterfaces, nullptr));
        for (std::size_t i = 0; i < std::size(objects_); ++i) {
            objects_[i] = g_dbus_connection_register_object(bus_.get(), kPlaces[i], node->interfaces[i],
                                                            &kTable, this, nullptr, nullptr);
        }
        parent_ = call(*bus_, "org.a11y.atspi.Registry", kRoot, "org.a11y.atspi.Socket", "Embed",
                       g_variant_new("((so))", ownAddress(), kRoot), "((so))");
        return parent_ != nullptr;
    }

    GVariant* dynamicAnswer(std::string_view name) {
        if (name == "Name") return g_variant_new_string(name_.c_str());
        if (name == "Id") return g_variant_new_int32(id_);
        if (name == "GetApplication") return g_variant_new("((so))", ownAddress(), kRoot);
        if (name != "Parent") return answerTo(name);
        return parent_ ? g_variant_get_child_value(parent_.get(), 0) : g_variant_new("(so)", "", kNobody);
    }

    static void called(GDBusConnection*, const char*, const char*, const char*, const char* method, GVariant*,
                       GDBusMethodInvocation* invocation, void* self) {
        g_dbus_method_invocation_return_value(invocation,
                                              static_cast<Announcer*>(self)->dynamicAnswer(method));
    }
    static GVariant* propertyRead(GDBusConnection*, const char*, const char*, const char*, const char* name,
                                  GError**, void* self) {
        return static_cast<Announcer*>(self)->dynamicAnswer(name);
    }
    static gboolean propertyWritten(GDBusConnection*, const char*, const char*, const char*, const char*,
                                    GVariant* value, GError**, void* self) {
        static_cast<Announcer*>(self)->id_ = g_variant_get_int32(value);  // the only one that can be
        return TRUE;
    }

    void emit(const std::string& text) {
        constexpr int kPolite = 1;  // ATSPI_LIVE_POLITE: after what is being read
        g_dbus_connection_emit_signal(
            bus_.get(), nullptr, kRoot, "org.a11y.atspi.Event.Object", "Announcement",
            g_variant_new("(siiva{sv})", "", kPolite, 0, g_variant_new_string(text.c_str()), nullptr),
            nullptr);
    }

    const std::string address_, name_;
    const DesktopAnnouncer::Failed failed_;
    void* const failedContext_;
    std::atomic<bool> hasEnded_{false};
    std::atomic<int> waiting_{0};
    // Of the thread:
    BusConnection bus_;
    guint objects_[std::size(kPlaces)] = {};
    BusValues parent_;
    std::int32_t id_ = 0;

    BusThread thread_;  // joined before anything that it uses goes
};

void* open(const char* address, const char* name, DesktopAnnouncer::Failed failed, void* context) {
    return new Announcer(address, name, failed, context);
}

bool announce(void* announcer, const char* text) {
    return static_cast<Announcer*>(announcer)->announce(text);
}

void close(void* announcer) {
    delete static_cast<Announcer*>(announcer);
}

}  // namespace

const DesktopAnnouncer kDesktopAnnouncer{.open = &open, .announce = &announce, .close = &close};

}  // namespace kx
