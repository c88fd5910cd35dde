// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string_view>

/// The two tables that turn a chosen language or a system language tag into the name of a localization
/// folder: their one place. The languages are those that the applications are translated into; the Orvik
/// application ships without simplified Chinese and shows English instead. In one column no prefix begins
/// another, so at most one row applies.
namespace kx::languages {

/// What is used where nothing fits.
inline constexpr std::string_view kDefault = "en";
/// What a system language ends as that the application has no localization for.
inline constexpr std::string_view kUnsupported = "en-US";
/// A language of its own, by this exact tag only: any other tag that begins with "pt" is "pt".
inline constexpr std::string_view kBrazilian = "pt-BR";

/// A fixed choice as applications and older versions wrote it.
struct Alias {
    std::string_view prefix;
    std::string_view language;
    std::string_view orvikLanguage = language;
};

inline constexpr std::array<Alias, 4> kAliases = {{
    {"pt_BR", "pt-BR"},
    {"zh_Hant", "zh-Hant"},
    {"zh_Hans", "zh-Hans", "en"},
    {"es_419", "es-419"},
}};

struct SystemLanguage {
    std::string_view selectionPrefix;  ///< what a tag begins with, for a selection that follows the system
    std::string_view derivedPrefix;    ///< the same for the language derived without a selection
    std::string_view language;
    std::string_view orvikLanguage = language;
};

inline constexpr std::array<SystemLanguage, 29> kSystemLanguages = {{
    {"en", "en-", "en"},
    {"zh-Hant", "zh-Hant", "zh-Hant"},
    {"zh-Hans", "zh-Hans", "zh-Hans", "en"},
    {"cs", "cs-", "cs"},
    {"bg", "bg-", "bg"},
    {"de", "de-", "de"},
    {"da", "da-", "da"},
    {"el", "el-", "el"},
    {"es", "es-", "es"},
    {"fi", "fi-", "fi"},
    {"fr", "fr-", "fr"},
    {"it", "it-", "it"},
    {"ko", "ko-", "ko"},
    {"nb", "nb-", "nb"},
    {"nl", "nl-", "nl"},
    {"pl", "pl-", "pl"},
    {"pt", "pt-", "pt"},
    {"ro", "ro-", "ro"},
    {"ru", "ru-", "ru"},
    {"sk", "sk-", "sk"},
    {"sv", "sv-", "sv"},
    {"tr", "tr-", "tr"},
    {"vi", "vi-", "vi"},
    {"th", "th-", "th"},
    {"ja", "ja-", "ja"},
    {"uk", "uk-", "uk"},
    {"ar", "ar-", "ar"},
    {"hu", "hu-", "hu"},
    {"sr", "sr-", "sr"},
}};

/// The language of the row whose prefix (a member of Row) begins the text; absent if no row applies.
template <class Row, std::size_t N>
[[nodiscard]] constexpr std::optional<std::string_view> languageFor(const std::array<Row, N>& rows,
                                                                    std::string_view Row::*prefix,
                                                                    std::string_view text, bool orvik) {
    for (const Row& row : rows) {
        if (text.starts_with(row.*prefix)) return orvik ? row.orvikLanguage : row.language;
    }
    return std::nullopt;
}

}  // namespace kx::languages
