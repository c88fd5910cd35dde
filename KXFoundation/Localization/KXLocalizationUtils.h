// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Localization/LanguageState.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSBundle;

/// Shows the application in a language chosen inside it instead of the system's.
///
/// The choice is a fixed language or the wish to follow the system. It is kept in the user defaults and
/// loaded again by every look-up and by isRTL(); who follows the system sees a change of the system's
/// language at the next look-up. Texts come from the main bundle's folder `<code>.lproj` for the selected
/// language (without a selection: for the system's), then from `en.lproj`, and in the end are the key itself.
/// Nothing is posted when the choice changes: make the controls anew, set their keys again, or bind them
/// (LiveLanguage.h).
///
/// No instances. One thread at a time: the state (LanguageState.h) has no lock. Nothing here fails; what is
/// missing gives the next best answer.
class KX_EXPORT KXLocalizationUtils {
  public:
    KXLocalizationUtils() = delete;

    /// Selects a language, or with "auto" follows the system; keeps the choice at once and answers the
    /// language that is selected now. Any text is taken and kept, whether the application is localized in it
    /// or not. An absent language takes the choice back: nothing is selected, and the answer is absent.
    static std::optional<std::string> setSelectLanguage(std::optional<std::string_view> language);
    /// The selected language as last loaded or set; without one currentPreferredLanguage(). Reads no
    /// defaults, so it is the latter until the first look-up after the start.
    [[nodiscard]] static std::string selectLanguage();

    /// The text of the key in the table (absent: the default one) in the selected language. The key itself if
    /// no table has it; absent only if the main bundle has no `en.lproj` to say so.
    [[nodiscard]] static std::optional<std::string> localizedStringForKey(
        std::string_view key, std::optional<std::string_view> tableName = {});
    /// The same from the folders of another bundle; an absent one stands for the main bundle.
    [[nodiscard]] static std::optional<std::string> localizedStringInBundle(
        const std::shared_ptr<NSBundle>& bundle, std::string_view key,
        std::optional<std::string_view> tableName = {});

    /// Whether the selected language (without a selection: the system's) is written right to left.
    [[nodiscard]] static bool isRTL();
    /// Whether the system's language is, whatever is selected.
    [[nodiscard]] static bool isSystemRTL();
    /// Only "ar", unless the application changed the set. Valid until the variable of this name is written.
    [[nodiscard]] static const LanguageSet& rtlLanguageSet();

    /// The language derived from the system's first preference: an application's localization, or "en-US".
    /// Computed once in a process.
    [[nodiscard]] static std::string currentUseLanguage();
    /// The names of the main bundle's localizations, "Base" included. Valid until lSupportLanguageSet is
    /// written.
    [[nodiscard]] static const LanguageSet& supportLanguages();
    [[nodiscard]] static bool isCurrentUseLanguageSupported();
    /// currentUseLanguage() if the application is localized in it, else defaultLanguage().
    [[nodiscard]] static std::string currentPreferredLanguage();
    /// "en".
    [[nodiscard]] static std::string defaultLanguage();
};

}  // namespace kx
