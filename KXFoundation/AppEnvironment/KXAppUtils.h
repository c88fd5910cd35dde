// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class KXAppInfo;
class NSURL;

/// The name that marks the Orvik application, which several tables treat differently.
inline constexpr std::string_view orvikAppName = "Orvik";

/// What the running application is, where its user is, and its maker's pages and store. No instances; any
/// thread, but for the three calls that depend on the selected language (see KXLocalizationUtils). The
/// addresses are the application's to give: see AppLinks.h.
class KX_EXPORT KXAppUtils {
  public:
    KXAppUtils() = delete;

    /// CFBundleDisplayName of the main bundle, even an empty one; without it (or if it is no text) the
    /// identifier.
    [[nodiscard]] static std::optional<std::string> appName();
    /// The main bundle's identifier.
    [[nodiscard]] static std::optional<std::string> appPackageName();
    /// Whether appName() is exactly orvikAppName.
    [[nodiscard]] static bool isOrvikApp();

    /// The user's locale as language and region, "zh_TW". Without a region the language alone ("eo").
    [[nodiscard]] static std::string currentLocale();

    /// The region of the cloud service for the user's first preferred language: the same language and region,
    /// else by script, else the language's first region, else "en_US".
    [[nodiscard]] static std::string currentCloudLocale();
    /// The region for a selection key with underscores ("pt_BR", "zh_Hant", "auto"), matched whole; absent if
    /// unknown.
    [[nodiscard]] static std::optional<std::string> getCloudLocaleBySelectedCountryBykey(
        std::optional<std::string_view> key);

    /// The feedback page: the general one in the Orvik application, else the one in the language of
    /// getFeedbackLanguageCode().
    [[nodiscard]] static std::string getFeedbackUrl();
    /// What the feedback page calls the selected language ("ex_MX"); "en_US" if it does not know it.
    [[nodiscard]] static std::string getFeedbackLanguageCode();
    /// What the maker's tools call the selected language ("latam"); "en" if they do not know it.
    [[nodiscard]] static std::string getORLOToolLanguageCode();

    /// CFBundleShortVersionString of the main bundle, absent if it is missing or no text.
    [[nodiscard]] static std::optional<std::string> currentAppVersion();
    /// CFBundleVersion of the main bundle, absent if it is missing or no text.
    [[nodiscard]] static std::optional<std::string> currentAppVersionCode();
    /// Whether `version` is before `other`, numbers by their value: "1.9" is before "1.10", "1.0" before
    /// "1.0.0". False if either is absent. Allocates nothing.
    [[nodiscard]] static bool isAppVersionOlderThan(std::optional<std::string_view> version,
                                                    std::optional<std::string_view> other) noexcept;

    /// Open the application's reviews, or its page, in the store's own program. The identifier is the
    /// application's in the store; an absent one is an empty one, here and below.
    static void jumpToAppStoreUserReviews(std::optional<std::string_view> applicationIdentifier);
    static void jumpToAppStoreDetailViews(std::optional<std::string_view> applicationIdentifier);

    /// Asks the store's look-up service for the application's latest release and its notes. False, and no
    /// call of `completed`, while another look-up runs. Else `completed` is called once, on a thread of the
    /// URL session, with what was found; with none if nothing was, whatever the reason. The running look-up
    /// is `infoTask` (StoreLookup.h).
    static bool checkAppInfoFromAppStore(std::optional<std::string_view> applicationIdentifier,
                                         std::function<void(std::shared_ptr<KXAppInfo>)> completed);
    /// Ends the running look-up early, if there is one; its callback is called with none.
    static void cancelCheckAppInfo();

    /// Has the desktop open the address in the program that is registered for its scheme. Returns at once;
    /// a text that is no address, or has no scheme, opens nothing. One given just before the process exits
    /// may stay unopened.
    static void openURLString(std::optional<std::string_view> address);
    static void openURL(const std::optional<NSURL>& address);

    /// The instant that many seconds after 1970 began in UTC, in the system's time zone: English, in the
    /// pattern's form (UTS #35). Empty where the instant is beyond what the calendar can hold.
    [[nodiscard]] static std::string getTime(std::int64_t seconds, std::optional<std::string_view> format);
    /// A byte count in the largest unit of 1024 that it fills: 1500 gives "1.4K", cut to one digit; "0.0G"
    /// for 0. The units end with "G"; a count below 0 stays in "B".
    [[nodiscard]] static std::string getSpaceStringFromByteValue(std::int64_t bytes);

    /// Always false.
    [[nodiscard]] static bool isAppContactsAuthorized() noexcept { return false; }
    /// Does nothing, and never calls back.
    static void appContactsRequestAuthotizedWithCompletedBlock(const std::function<void(bool)>&) noexcept {}
};

}  // namespace kx
