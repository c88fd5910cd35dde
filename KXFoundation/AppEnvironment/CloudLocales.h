// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>

/// The regions that the cloud service runs in, and what leads to each: the one place of these three tables,
/// as the service's operator publishes them. The Orvik application has no mainland-China region: it is served
/// from "en_US".
namespace kx::cloud {

inline constexpr std::string_view kDefaultLocale = "en_US";
/// Taken out of the list in the Orvik application.
inline constexpr std::string_view kNotForOrvik = "zh_CN";

/// In the order in which they are tried; of one language the first is the fallback.
inline constexpr std::array<std::string_view, 33> kLocales = {
    "ar_SA", "bg_BG", "cs_CZ", "da_DK", "de_DE", "el_GR", "en_US", "es_ES", "es_MX", "fi_FI", "fr_FR",
    "he_IL", "hu_HU", "it_IT", "ja_JP", "ko_KR", "ms_MY", "nb_NO", "nl_NL", "pl_PL", "pt_BR", "pt_PT",
    "ro_RO", "ru_RU", "sk_SK", "sr_RS", "sv_SE", "th_TH", "tr_TR", "uk_UA", "vi_VN", "zh_TW", "zh_CN"};

struct Row {
    std::string_view key;
    std::string_view locale;
    std::string_view orvikLocale = locale;
};

/// Language and script to locale.
inline constexpr std::array<Row, 2> kByScript = {{
    {"zh_Hant", "zh_TW"},
    {"zh_Hans", "zh_CN", "en_US"},
}};

/// What the user picked in the application's own list, to locale.
inline constexpr std::array<Row, 34> kBySelectionKey = {{
    {"ar", "ar_SA"},  {"bg", "bg_BG"},      {"cs", "cs_CZ"},
    {"da", "da_DK"},  {"de", "de_DE"},      {"el", "el_GR"},
    {"en", "en_US"},  {"es", "es_ES"},      {"es_419", "es_MX"},
    {"fi", "fi_FI"},  {"fr", "fr_FR"},      {"he", "he_IL"},
    {"hu", "hu_HU"},  {"it", "it_IT"},      {"ja", "ja_JP"},
    {"ko", "ko_KR"},  {"ms", "ms_MY"},      {"nb", "nb_NO"},
    {"nl", "nl_NL"},  {"pl", "pl_PL"},      {"pt_BR", "pt_BR"},
    {"pt", "pt_PT"},  {"ro", "ro_RO"},      {"ru", "ru_RU"},
    {"sk", "sk_SK"},  {"sr", "sr_RS"},      {"sv", "sv_SE"},
    {"th", "th_TH"},  {"tr", "tr_TR"},      {"uk", "uk_UA"},
    {"vi", "vi_VN"},  {"zh_Hant", "zh_TW"}, {"zh_Hans", "zh_CN", "en_US"},
    {"auto", "auto"},
}};

}  // namespace kx::cloud
