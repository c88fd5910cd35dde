// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>

/// What the maker's web pages and tools call each language: the one place of this table, as their operators
/// publish it. The codes go out as they stand, those that look odd included.
namespace kx::feedback {

struct Codes {
    std::string_view page;  ///< of the feedback page
    std::string_view tool;  ///< of the tools
    std::string_view orvikPage = page;
    std::string_view orvikTool = tool;
};

struct Row {
    std::string_view language;
    Codes codes;
};

/// For a language without a row, and without any language.
inline constexpr Codes kDefault = {"en_US", "en"};

inline constexpr std::array<Row, 25> kCodes = {{
    {"en", {"en_US", "en"}},
    {"it", {"it_IT", "it"}},
    {"es", {"es_ES", "es"}},
    {"tr", {"tr_TR", "tr"}},
    {"th", {"th_TH", "th"}},
    {"ja", {"jp_JP", "jp"}},
    {"pt", {"pt_PT", "pt"}},
    {"es-419", {"ex_MX", "latam"}},
    {"ko", {"ko_KR", "kr"}},
    {"zh-Hant", {"zh_TW", "tw"}},
    {"zh-Hans", {"zh_TW", "tw", "en_US", "en"}},
    {"fr", {"fr_FR", "fr"}},
    {"ru", {"ru_RU", "ru", "ru_RU", "en"}},
    {"de", {"de_DE", "de"}},
    {"pl", {"pl_PL", "pl"}},
    {"pt-BR", {"pt_BR", "br"}},
    {"vi", {"vi_VN", "vn"}},
    {"hu", {"hu_HU", "hu"}},
    {"bg", {"bg_BG", "bg"}},
    {"uk", {"uk_UA", "uk-ua"}},
    {"cs", {"cs_CZ", "cz"}},
    {"sk", {"en_US", "cz"}},
    {"ro", {"ro_RO", "ro"}},
    {"sr", {"en_US", "en"}},
    {"ar", {"ar_SA", "sa"}},
}};

/// The codes of a selected language, matched whole.
[[nodiscard]] constexpr const Codes& codesOf(std::string_view language) noexcept {
    for (const Row& row : kCodes) {
        if (row.language == language) return row.codes;
    }
    return kDefault;
}

}  // namespace kx::feedback
