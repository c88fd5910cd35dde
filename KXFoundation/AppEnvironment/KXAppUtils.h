#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The name that marks the Orvik application, which several tables treat differently.
inline constexpr std::string_view orvikAppName = "Orvik";

/// What the running application is, and where its user is. No instances; any thread.
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
};

}  // namespace kx
