// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

/// The port of the user's language settings. The adapter reads LANGUAGE, LC_ALL, LC_MESSAGES, LANG
/// (languages) and LC_ALL, LC_TIME, LANG (locale) through Environment once; a test injects its own list and
/// may change it.
class KX_EXPORT LocaleSettings {
  public:
    virtual ~LocaleSettings() = default;

    /// Language tags, most preferred first ("zh-Hant-TW", "pt-BR"); may be empty.
    [[nodiscard]] virtual std::vector<std::string> preferredLanguages() const = 0;
    /// The locale as language, underscore, region ("en_US", "zh_TW"); the region may be missing ("eo"). A
    /// script stands between them only where the user's settings name one ("sr_Latn_RS").
    [[nodiscard]] virtual std::string localeIdentifier() const = 0;
    /// Another number below 2^32 after every change of either; asking costs one atomic load at most.
    [[nodiscard]] virtual std::uint64_t version() const noexcept = 0;

    static PortSlot<LocaleSettings>& slot();
    static std::shared_ptr<LocaleSettings> makeDefault();
};

/// A language and region. Immutable; any thread.
class KX_EXPORT NSLocale : public Subclass<NSLocale, NSObject> {
  public:
    /// Makes the locale for an identifier, with underscores or hyphens: kx::make<NSLocale>("zh_Hant_TW").
    bool init(std::string_view identifier);

    /// The user's preferred languages now, as tags, most preferred first.
    [[nodiscard]] static std::vector<std::string> preferredLanguages();
    /// Changes whenever preferredLanguages() or currentLocale() may answer differently; a few atomic loads.
    [[nodiscard]] static std::uint64_t settingsVersion() noexcept;
    [[nodiscard]] static std::shared_ptr<NSLocale> currentLocale();
    [[nodiscard]] static std::shared_ptr<NSLocale> localeWithLocaleIdentifier(std::string_view identifier);

    /// Whether this is currentLocale(), where the user's choice of 12 or 24 hours (ClockFormatSetting) goes
    /// before the locale's own habit.
    [[nodiscard]] bool followsClockFormat() const noexcept { return followsClockFormat_; }

    /// "zh_Hant_TW", as given but with underscores.
    [[nodiscard]] const std::string& localeIdentifier() const noexcept { return identifier_; }
    /// "zh"; absent if the identifier names no language.
    [[nodiscard]] std::optional<std::string> languageCode() const;
    /// "TW"; absent if the identifier names no region.
    [[nodiscard]] std::optional<std::string> countryCode() const;

  private:
    std::string identifier_;
    bool followsClockFormat_ = false;
};

/// Turns a POSIX locale name into a language tag as a desktop user expects: "zh_TW.UTF-8" gives "zh-Hant-TW",
/// "sr_RS@latin" "sr-Latn-RS", "no_NO" "nb-NO", "pt_BR" "pt-BR". "C", "POSIX" and what is no locale name give
/// none. Only Chinese gets a script that its name does not give. Any thread.
[[nodiscard]] KX_EXPORT std::optional<std::string> languageTagForPosixName(std::string_view name);

}  // namespace kx
