// SPDX-License-Identifier: MIT

#include <mutex>
#include <utility>

#include <KXFoundation/AppEnvironment/AppLinkDefaults.h>
#include <KXFoundation/AppEnvironment/AppLinks.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

struct LinksInUse {
    std::mutex mutex;
    AppLinks links{built::kFeedbackAddress, built::kOrvikFeedbackAddress, built::kProductIdentifier,
                   built::kStoreHost, built::kLookupHost};  // guarded by mutex
};

constinit ProcessState<LinksInUse> state;

}  // namespace

AppLinks appLinks() {
    LinksInUse& inUse = state.get();
    const std::lock_guard lock(inUse.mutex);
    return inUse.links;
}

void setAppLinks(AppLinks links) {
    LinksInUse& inUse = state.get();
    const std::lock_guard lock(inUse.mutex);
    std::swap(inUse.links, links);
}

}  // namespace kx
