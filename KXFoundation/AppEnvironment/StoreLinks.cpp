// SPDX-License-Identifier: MIT

// The store's pages, and handing addresses to the desktop.
#include <KXFoundation/AppEnvironment/AppLinks.h>
#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Platform/Foundation/NSURL.h>
#include <KXFoundation/Platform/Foundation/PercentEncoding.h>
#include <KXFoundation/Platform/Services/Workspace.h>

namespace kx {

namespace {

/// An address that the store's own program opens.
std::string storeAddress(std::string_view path, std::optional<std::string_view> applicationIdentifier) {
    return "itms-apps://" + appLinks().storeHost + std::string(path) +
           percentEncoded(applicationIdentifier.value_or(""));
}

}  // namespace

void KXAppUtils::jumpToAppStoreUserReviews(std::optional<std::string_view> applicationIdentifier) {
    openURLString(
        storeAddress("/WebObjects/MZStore.woa/wa/viewContentsUserReviews?id=", applicationIdentifier) +
        "&pageNumber=0&sortOrdering=2&type=Purple+Software&mt=8");
}

void KXAppUtils::jumpToAppStoreDetailViews(std::optional<std::string_view> applicationIdentifier) {
    openURLString(storeAddress("/app/id", applicationIdentifier));
}

void KXAppUtils::openURLString(std::optional<std::string_view> address) {
    openURL(NSURL::URLWithString(address));
}

void KXAppUtils::openURL(const std::optional<NSURL>& address) {
    if (address) Workspace::slot().current().openURL(*address);
}

}  // namespace kx
