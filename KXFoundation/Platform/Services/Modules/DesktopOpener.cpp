#include <gio/gio.h>

#include <KXFoundation/Platform/Services/DesktopOpener.h>

#include "BusQuestion.h"
#include "DesktopServices.h"

namespace kx {

namespace {

// https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.OpenURI.html
constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kOpener = "org.freedesktop.portal.OpenURI";

/// The person may be asked with which program: the portal takes the question back from one that left.
constexpr std::chrono::seconds kLongestDialogue{120};

DesktopReply reachBus(const char* busAddress, std::uint32_t timeoutMilliseconds) {
    return ask({.bus = busAddress,
                .service = "org.freedesktop.DBus",
                .path = "/org/freedesktop/DBus",
                .interface = "org.freedesktop.DBus",
                .method = "GetId"},
               timeoutMilliseconds);
}

DesktopReply portalVersion(const char* busAddress, std::uint32_t timeoutMilliseconds,
                           std::uint32_t* version) {
    GVariant* answer = nullptr;
    const DesktopReply reply = ask({.bus = busAddress,
                                    .service = kPortal,
                                    .path = kPortalPath,
                                    .interface = "org.freedesktop.DBus.Properties",
                                    .method = "Get",
                                    .arguments = g_variant_new("(ss)", kOpener, "version")},
                                   timeoutMilliseconds, &answer);
    if (reply != DesktopReply::Answered) return reply;
    GVariant* value = nullptr;
    if (g_variant_is_of_type(answer, G_VARIANT_TYPE("(v)"))) g_variant_get(answer, "(v)", &value);
    const bool isNumber = value && g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32);
    *version = isNumber ? g_variant_get_uint32(value) : 0;
    if (value) g_variant_unref(value);
    g_variant_unref(answer);
    return isNumber ? reply : DesktopReply::Refused;
}

DesktopReply openAddress(const char* busAddress, const char* address, std::uint32_t timeoutMilliseconds) {
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    return ask({.bus = busAddress,
                .service = kPortal,
                .path = kPortalPath,
                .interface = kOpener,
                .method = "OpenURI",
                .arguments = g_variant_new("(ssa{sv})", "", address, &options),
                .staysFor = kLongestDialogue},
               timeoutMilliseconds);
}

}  // namespace

const DesktopOpener kDesktopOpener{
    .reachBus = reachBus, .portalVersion = portalVersion, .openAddress = openAddress};

}  // namespace kx
