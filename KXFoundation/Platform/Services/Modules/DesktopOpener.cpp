// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Services/DesktopOpener.h>

#include "DesktopPortal.h"
#include "DesktopServices.h"

namespace kx {

namespace {

// https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.OpenURI.html
constexpr const char* kOpener = "org.freedesktop.portal.OpenURI";

/// The person may be asked with which program: the portal takes the question back from one that left.
constexpr std::chrono::seconds kLongestDialogue{120};

DesktopReply reachBus(const char* busAddress, std::uint32_t timeoutMilliseconds) {
    return converse(busAddress, timeoutMilliseconds, [](BusConversation& talk) {
        static constexpr const char* kBus = "org.freedesktop.DBus";
        talk.call({kBus, "/org/freedesktop/DBus", kBus, "GetId"});
    });
}

DesktopReply portalVersion(const char* busAddress, std::uint32_t timeoutMilliseconds,
                           std::uint32_t* version) {
    return converse(
        busAddress, timeoutMilliseconds, *version, [](BusConversation& talk, std::uint32_t& number) {
            const auto answer = talk.call({kPortal, kPortalPath, "org.freedesktop.DBus.Properties", "Get",
                                           g_variant_new("(ss)", kOpener, "version"), "(v)"});
            if (!answer) return;
            const BusValues variant(g_variant_get_child_value(answer.get(), 0));
            const BusValues value(g_variant_get_variant(variant.get()));
            if (!g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT32))
                return talk.fail(DesktopReply::Refused);
            number = g_variant_get_uint32(value.get());
        });
}

DesktopReply openAddress(const char* busAddress, const char* address, std::uint32_t timeoutMilliseconds) {
    return converse(busAddress, timeoutMilliseconds, [address = std::string(address)](BusConversation& talk) {
        GVariantBuilder options;
        g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
        talk.stayFor(kLongestDialogue);
        talk.call({kPortal, kPortalPath, kOpener, "OpenURI",
                   g_variant_new("(ssa{sv})", "", address.c_str(), &options)});
    });
}

}  // namespace

const DesktopOpener kDesktopOpener{
    .reachBus = reachBus, .portalVersion = portalVersion, .openAddress = openAddress};

}  // namespace kx
