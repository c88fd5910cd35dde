// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

/// The process-wide state of the language switch. Applications may read and write it; no lock protects it, so
/// it belongs to one thread at a time, together with every operation of KXLocalizationUtils. All of it starts
/// absent. It is there before any static constructor runs, and stays until the process has ended.
namespace kx {

class NSBundle;

using LanguageSet = std::set<std::string, std::less<>>;

// Keys of the user defaults, and the texts that are passed and stored.
inline constexpr std::string_view kSelectLanguage = "kSelectLanguage";  ///< key of the selected language
inline constexpr std::string_view kSelectLog = "kSelectLog";            ///< key of the selection mode
inline constexpr std::string_view kAuto = "auto";  ///< asks setSelectLanguage to follow the system
inline constexpr std::string_view kFollowSystem = "FollowSystem";        ///< mode: follow the system
inline constexpr std::string_view kNotFollowSystem = "notFollowSystem";  ///< mode: a fixed language

/// The selected language and the mode, as last loaded from the defaults or set; every look-up loads them
/// again.
KX_EXPORT extern std::optional<std::string>& selectLanguage;
KX_EXPORT extern std::optional<std::string>& selectLog;

/// The language derived from the system's preferences and the application's own localizations: computed once.
KX_EXPORT extern std::optional<std::string>& lCurrentUseLanguage;
KX_EXPORT extern std::optional<LanguageSet>& lSupportLanguageSet;

/// The languages written right to left.
KX_EXPORT extern std::optional<LanguageSet>& rtlLanguageSet;

/// The main bundle's folders for the selected language (replaced with every selection), for "en" and for
/// currentPreferredLanguage() (both made once, when first needed).
KX_EXPORT extern std::shared_ptr<NSBundle>& selectLanguageBundle;
KX_EXPORT extern std::shared_ptr<NSBundle>& defaultLanguageBundle;
KX_EXPORT extern std::shared_ptr<NSBundle>& currentLanguageBundle;

}  // namespace kx
