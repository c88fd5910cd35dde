// SPDX-License-Identifier: MIT

#include "Platform/Services/MockSecretService.h"

#include <algorithm>
#include <stdexcept>

#include <gio/gio.h>

namespace kx::testing {

namespace {

constexpr const char* kCollection = "/org/freedesktop/secrets/collection/test";
constexpr const char* kDialogue = "/org/freedesktop/secrets/prompt/p1";
constexpr const char* kPlain = "application/octet-stream";

std::map<std::string, std::string> attributesIn(GVariant* dictionary) {
    std::map<std::string, std::string> attributes;
    GVariantIter iterator;
    g_variant_iter_init(&iterator, dictionary);
    const char *key = nullptr, *value = nullptr;
    while (g_variant_iter_next(&iterator, "{&s&s}", &key, &value)) attributes.emplace(key, value);
    return attributes;
}

}  // namespace

MockSecretService::MockSecretService(const std::string& busAddress) {
    constexpr auto kFlags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    bus_ = g_dbus_connection_new_for_address_sync(busAddress.c_str(), kFlags, nullptr, nullptr, nullptr);
    if (!bus_) throw std::runtime_error("no bus at " + busAddress);
    filter_ = g_dbus_connection_add_filter(bus_, &MockSecretService::received, this, nullptr);
    GVariant* named = g_dbus_connection_call_sync(bus_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", "RequestName",
                                                  g_variant_new("(su)", "org.freedesktop.secrets", 4),
                                                  nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    g_variant_unref(named);
}

MockSecretService::~MockSecretService() {
    g_dbus_connection_remove_filter(bus_, filter_);
    g_dbus_connection_close_sync(bus_, nullptr, nullptr);
    g_object_unref(bus_);
}

GDBusMessage* MockSecretService::received(GDBusConnection*, GDBusMessage* message, gboolean incoming,
                                          gpointer self) {
    if (!incoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL)
        return message;
    auto& mock = *static_cast<MockSecretService*>(self);
    const std::lock_guard guard(mock.mutex_);
    if (!mock.isSilent_) {
        GVariant* values = mock.answer(message);
        GDBusMessage* reply = values ? g_dbus_message_new_method_reply(message)
                                     : g_dbus_message_new_method_error_literal(
                                           message, "org.freedesktop.DBus.Error.Failed", "");
        if (values) g_dbus_message_set_body(reply, values);
        g_dbus_connection_send_message(mock.bus_, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
        g_object_unref(reply);
        if (std::string(g_dbus_message_get_member(message)) == "Prompt") mock.showDialogue();
    }
    g_object_unref(message);
    return nullptr;
}

/// The values of the reply; nullptr for an error.
GVariant* MockSecretService::answer(GDBusMessage* message) {
    const std::string member = g_dbus_message_get_member(message);
    const std::string path = g_dbus_message_get_path(message);
    const std::string sender = g_dbus_message_get_sender(message);
    GVariant* arguments = g_dbus_message_get_body(message);
    if (member == "OpenSession") return openSession(sender);
    if (member == "ReadAlias") return g_variant_new("(o)", hasCollection_ ? kCollection : "/");
    if (member == "SearchItems") return search(arguments);
    if (member == "Unlock") return unlock(arguments);
    if (member == "Prompt") return g_variant_new("()");
    if (isLocked_) return nullptr;
    if (member == "CreateItem") return create(arguments, sender);
    if (member == "GetSecret") return secret(path, arguments, sender);
    if (member == "Delete") return found_.erase(path) > 0 ? g_variant_new("(o)", "/") : nullptr;
    return nullptr;
}

GVariant* MockSecretService::openSession(const std::string& sender) {
    const std::string path = "/org/freedesktop/secrets/session/s" + std::to_string(++numbers_);
    sessions_[path] = sender;
    return g_variant_new("(vo)", g_variant_new_string(""), path.c_str());
}

GVariant* MockSecretService::search(GVariant* arguments) const {
    GVariant* dictionary = g_variant_get_child_value(arguments, 0);
    const Attributes wanted = attributesIn(dictionary);
    g_variant_unref(dictionary);
    GVariantBuilder paths;
    g_variant_builder_init(&paths, G_VARIANT_TYPE_OBJECT_PATH_ARRAY);
    for (const auto& [path, item] : found_) {
        const bool fits = std::ranges::all_of(wanted, [&own = item.attributes](const auto& attribute) {
            const auto same = own.find(attribute.first);
            return same != own.end() && same->second == attribute.second;
        });
        if (fits) g_variant_builder_add(&paths, "o", path.c_str());
    }
    GVariant* list = g_variant_builder_end(&paths);
    GVariant* none = g_variant_new_array(G_VARIANT_TYPE_OBJECT_PATH, nullptr, 0);
    return isLocked_ ? g_variant_new("(@ao@ao)", none, list) : g_variant_new("(@ao@ao)", list, none);
}

GVariant* MockSecretService::unlock(GVariant* arguments) const {
    GVariant* none = g_variant_new_array(G_VARIANT_TYPE_OBJECT_PATH, nullptr, 0);
    if (isLocked_) return g_variant_new("(@aoo)", none, kDialogue);
    g_variant_unref(g_variant_ref_sink(none));
    GVariant* objects = g_variant_get_child_value(arguments, 0);
    GVariant* values = g_variant_new("(@aoo)", objects, "/");
    g_variant_unref(objects);
    return values;
}

GVariant* MockSecretService::create(GVariant* arguments, const std::string& sender) {
    GVariant *properties = nullptr, *data = nullptr, *answer = nullptr;
    const char* session = nullptr;
    gboolean replace = FALSE;
    g_variant_get(arguments, "(@a{sv}(&o@ay@ay&s)b)", &properties, &session, nullptr, &data, nullptr,
                  &replace);
    GVariant* attributes =
        g_variant_lookup_value(properties, "org.freedesktop.Secret.Item.Attributes", G_VARIANT_TYPE("a{ss}"));
    if (sessions_[session] == sender) {
        gsize size = 0;
        const auto* bytes = static_cast<const std::uint8_t*>(g_variant_get_fixed_array(data, &size, 1));
        const Item item{attributesIn(attributes), {bytes, bytes + size}};
        if (replace)
            std::erase_if(found_, [&](const auto& f) { return f.second.attributes == item.attributes; });
        const std::string path = kCollection + ("/i" + std::to_string(++numbers_));
        found_[path] = item;
        answer = g_variant_new("(oo)", path.c_str(), "/");
    }
    for (GVariant* part : {properties, attributes, data}) g_variant_unref(part);
    return answer;
}

GVariant* MockSecretService::secret(const std::string& item, GVariant* arguments,
                                    const std::string& sender) const {
    const char* session = nullptr;
    g_variant_get(arguments, "(&o)", &session);
    const auto found = found_.find(item);
    const auto opened = sessions_.find(session);
    if (found == found_.end() || opened == sessions_.end() || opened->second != sender) return nullptr;
    const auto& data = found->second.data;
    return g_variant_new("((o@ay@ays))", session, g_variant_new_array(G_VARIANT_TYPE_BYTE, nullptr, 0),
                         g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, data.data(), data.size(), 1), kPlain);
}

void MockSecretService::showDialogue() {
    ++dialogues_;
    if (person_ != Person::IsAway) endDialogue(person_ == Person::Dismisses);
}

void MockSecretService::endDialogue(bool dismissed) {
    isLocked_ = isLocked_ && dismissed;
    GVariant* objects = g_variant_new_array(G_VARIANT_TYPE_OBJECT_PATH, nullptr, 0);
    g_dbus_connection_emit_signal(bus_, nullptr, kDialogue, "org.freedesktop.Secret.Prompt", "Completed",
                                  g_variant_new("(bv)", dismissed ? TRUE : FALSE, objects), nullptr);
}

}  // namespace kx::testing
