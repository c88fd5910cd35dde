// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The web addresses that the application's maker has to give. Each starts as what the library was built with
/// (the CMake variables KX_FEEDBACK_ADDRESS and so on), which by default are placeholders that no name
/// service answers ("feedback.invalid").
///
///     AppLinks links = appLinks();
///     links.storeHost = "store.example.org";
///     setAppLinks(links);
struct AppLinks {
    /// The feedback page, without query: "https://www.example.org/feedback".
    std::string feedbackAddress = {};
    /// The general feedback page, which the Orvik application uses, and the value of "app" in its query.
    std::string orvikFeedbackAddress = {};
    std::string productIdentifier = {};
    /// The host of the application store's pages, which its own program shows.
    std::string storeHost = {};
    /// The host of the store's look-up service; a port may follow: "host:8443".
    std::string lookupHost = {};

    bool operator==(const AppLinks&) const = default;
};

/// The links in use; a copy. Any thread.
[[nodiscard]] KX_EXPORT AppLinks appLinks();
/// Puts the application's own links in their place: at its start, before anything asks for them. Any thread.
KX_EXPORT void setAppLinks(AppLinks links);

}  // namespace kx
