// SPDX-License-Identifier: MIT

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gio/gio.h>

#include <KXFoundation/Platform/Services/DesktopSecrets.h>

#include "DesktopServices.h"
#include "SecretDialogue.h"

namespace kx {

namespace {

using Bytes = std::vector<std::uint8_t>;
using Paths = std::vector<std::string>;

/// A copy for the thread that talks, which may outlive the call.
struct Attributes {
    std::string application, service, account;

    explicit Attributes(const DesktopSecret& secret)
        : application(secret.application), service(secret.service), account(secret.account) {}

    [[nodiscard]] GVariant* dictionary() const {
        GVariantBuilder builder;
        g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
        g_variant_builder_add(&builder, "{ss}", "xdg:schema", "org.kxfoundation.Keychain");
        g_variant_builder_add(&builder, "{ss}", "application", application.c_str());
        g_variant_builder_add(&builder, "{ss}", "service", service.c_str());
        g_variant_builder_add(&builder, "{ss}", "account", account.c_str());
        return g_variant_builder_end(&builder);
    }
    [[nodiscard]] std::string label() const { return application + ": " + service; }
};

/// The secret (session, parameters, value, content type) of a plain session.
GVariant* plainSecret(const std::string& session, const Bytes& data) {
    GVariant* value = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, data.data(), data.size(), 1);
    return g_variant_new("(o@ay@ays)", session.c_str(),
                         g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, nullptr, 0, 1), value,
                         "application/octet-stream");
}

GVariant* pathArray(const Paths& paths) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_OBJECT_PATH_ARRAY);
    for (const std::string& path : paths) g_variant_builder_add(&builder, "o", path.c_str());
    return g_variant_builder_end(&builder);
}

Paths pathsIn(const BusValues& values, gsize index) {
    const BusValues list(g_variant_get_child_value(values.get(), index));
    Paths paths;
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
        const BusValues path(g_variant_get_child_value(list.get(), i));
        paths.emplace_back(g_variant_get_string(path.get(), nullptr));
    }
    return paths;
}

std::string pathIn(const BusValues& values, gsize index) {
    const BusValues path(g_variant_get_child_value(values.get(), index));
    return g_variant_get_string(path.get(), nullptr);
}

/// The steps of the service's interface: https://specifications.freedesktop.org/secret-service/latest/
class Service {
  public:
    explicit Service(BusConversation& conversation) : talk_(conversation) {}

    /// The default collection; empty, and Refused, if there is none.
    std::string defaultCollection() {
        const auto answer = call(kServicePath, kService, "ReadAlias", g_variant_new("(s)", "default"), "(o)");
        if (!answer) return {};
        const std::string path = pathIn(answer, 0);
        if (path != kNone) return path;
        talk_.fail(DesktopReply::Refused);
        return {};
    }

    /// The items with these attributes, all unlocked in the end; false if that failed.
    bool findUnlocked(const Attributes& attributes, Paths& items) {
        const auto answer = call(kServicePath, kService, "SearchItems",
                                 g_variant_new("(@a{ss})", attributes.dictionary()), "(aoao)");
        if (!answer) return false;
        items = pathsIn(answer, 0);
        const Paths locked = pathsIn(answer, 1);
        if (!unlock(locked)) return false;
        items.insert(items.end(), locked.begin(), locked.end());
        return true;
    }

    bool unlock(const Paths& objects) {
        if (objects.empty()) return true;
        const auto answer =
            call(kServicePath, kService, "Unlock", g_variant_new("(@ao)", pathArray(objects)), "(aoo)");
        return answer && confirm(pathIn(answer, 1));
    }

    std::optional<Bytes> secretOf(const std::string& item, const std::string& session) {
        const auto answer =
            call(item, kItem, "GetSecret", g_variant_new("(o)", session.c_str()), "((oayays))");
        if (!answer) return std::nullopt;
        const BusValues secret(g_variant_get_child_value(answer.get(), 0));
        const BusValues value(g_variant_get_child_value(secret.get(), 2));
        gsize size = 0;
        const auto* bytes =
            static_cast<const std::uint8_t*>(g_variant_get_fixed_array(value.get(), &size, 1));
        return Bytes(bytes, bytes + size);
    }

    bool create(const std::string& collection, const std::string& session, const Attributes& attributes,
                const Bytes& data) {
        GVariantBuilder properties;
        g_variant_builder_init(&properties, G_VARIANT_TYPE_VARDICT);
        g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Label",
                              g_variant_new_string(attributes.label().c_str()));
        g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Attributes",
                              attributes.dictionary());
        const auto answer =
            call(collection, kCollection, "CreateItem",
                 g_variant_new("(a{sv}@(oayays)b)", &properties, plainSecret(session, data), TRUE), "(oo)");
        return answer && confirm(pathIn(answer, 1));
    }

    bool erase(const std::string& item) {
        const auto answer = call(item, kItem, "Delete", nullptr, "(o)");
        return answer && confirm(pathIn(answer, 0));
    }

    std::string openSession() {
        const auto answer = call(kServicePath, kService, "OpenSession",
                                 g_variant_new("(sv)", "plain", g_variant_new_string("")), "(vo)");
        return answer ? pathIn(answer, 1) : std::string();
    }

  private:
    BusValues call(const std::string& path, const char* interface, const char* method, GVariant* arguments,
                   const char* answerType) {
        return talk_.call({kSecretService, path, interface, method, arguments, answerType});
    }
    bool confirm(const std::string& dialogue) {
        return dialogue == kNone || waitForDialogue(talk_, dialogue);
    }

    static constexpr const char* kNone = "/";
    static constexpr const char* kServicePath = "/org/freedesktop/secrets";
    static constexpr const char* kService = "org.freedesktop.Secret.Service";
    static constexpr const char* kCollection = "org.freedesktop.Secret.Collection";
    static constexpr const char* kItem = "org.freedesktop.Secret.Item";

    BusConversation& talk_;
};

DesktopReply probe(const char* busAddress, std::uint32_t timeoutMilliseconds) {
    return converse(busAddress, timeoutMilliseconds,
                    [](BusConversation& talk) { static_cast<void>(Service(talk).defaultCollection()); });
}

DesktopReply copy(const char* busAddress, const DesktopSecret* secret, std::uint32_t timeoutMilliseconds,
                  void (*take)(void* context, const void* data, std::size_t size), void* context,
                  bool* found) {
    std::optional<Bytes> copied;
    const DesktopReply reply =
        converse(busAddress, timeoutMilliseconds, copied,
                 [attributes = Attributes(*secret)](BusConversation& talk, std::optional<Bytes>& data) {
                     Service service(talk);
                     Paths items;
                     if (!service.findUnlocked(attributes, items) || items.empty()) return;
                     const std::string session = service.openSession();
                     if (!session.empty()) data = service.secretOf(items.front(), session);
                 });
    if (reply != DesktopReply::Answered) return reply;
    *found = copied.has_value();
    if (copied) take(context, copied->data(), copied->size());
    return reply;
}

DesktopReply add(const char* busAddress, const DesktopSecret* secret, const void* data, std::size_t size,
                 std::uint32_t timeoutMilliseconds) {
    const auto* first = static_cast<const std::uint8_t*>(data);
    return converse(
        busAddress, timeoutMilliseconds,
        [attributes = Attributes(*secret), bytes = Bytes(first, first + size)](BusConversation& talk) {
            Service service(talk);
            const std::string collection = service.defaultCollection();
            if (collection.empty() || !service.unlock({collection})) return;
            const std::string session = service.openSession();
            if (!session.empty()) service.create(collection, session, attributes, bytes);
        });
}

DesktopReply remove(const char* busAddress, const DesktopSecret* secret, std::uint32_t timeoutMilliseconds,
                    bool* found) {
    return converse(busAddress, timeoutMilliseconds, *found,
                    [attributes = Attributes(*secret)](BusConversation& talk, bool& isThere) {
                        Service service(talk);
                        Paths items;
                        if (!service.findUnlocked(attributes, items)) return;
                        isThere = !items.empty();
                        for (const std::string& item : items) {
                            if (!service.erase(item)) return;
                        }
                    });
}

}  // namespace

const DesktopSecrets kDesktopSecrets{.probe = probe, .copy = copy, .add = add, .remove = remove};

}  // namespace kx
