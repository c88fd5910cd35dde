// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <utility>

#include <KXFoundation/Platform/Foundation/IcuModule.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Platform/Foundation/PosixLocaleName.h>

namespace kx {

namespace {

constexpr std::size_t kLongestName = 64;

bool isLower(char c) noexcept {
    return c >= 'a' && c <= 'z';
}
bool isUpper(char c) noexcept {
    return c >= 'A' && c <= 'Z';
}
bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) noexcept {
    return isLower(c) || isUpper(c);
}
char lowered(char c) noexcept {
    return isUpper(c) ? static_cast<char>(c | 0x20) : c;
}
char raised(char c) noexcept {
    return isLower(c) ? static_cast<char>(c & ~0x20) : c;
}

bool isLanguage(std::string_view part) noexcept {
    return (part.size() == 2 || part.size() == 3) && std::ranges::all_of(part, isLetter);
}
bool isScript(std::string_view part) noexcept {
    return part.size() == 4 && std::ranges::all_of(part, isLetter);
}
bool isRegion(std::string_view part) noexcept {
    return (part.size() == 2 && std::ranges::all_of(part, isLetter)) ||
           (part.size() == 3 && std::ranges::all_of(part, isDigit));
}
bool isEncodingOrModifier(std::string_view part) noexcept {
    return std::ranges::all_of(part,
                               [](char c) { return isLetter(c) || isDigit(c) || c == '-' || c == '_'; });
}

std::string inLower(std::string_view part) {
    std::string text(part);
    std::ranges::transform(text, text.begin(), lowered);
    return text;
}
std::string inUpper(std::string_view part) {
    std::string text(part);
    std::ranges::transform(text, text.begin(), raised);
    return text;
}
std::string inTitle(std::string_view part) {
    return inUpper(part.substr(0, 1)) + inLower(part.substr(1));
}

struct Row {
    std::string_view from, to;
};

template <std::size_t N>
std::string_view translated(const std::array<Row, N>& rows, std::string_view from,
                            std::string_view otherwise) {
    const auto found = std::ranges::find(rows, from, &Row::from);
    return found == rows.end() ? otherwise : found->to;
}

/// Old and macro codes that desktops still use; CLDR 42, supplemental metadata, language aliases.
constexpr std::array<Row, 9> kTodaysLanguage{{{"cmn", "zh"},
                                              {"in", "id"},
                                              {"iw", "he"},
                                              {"ji", "yi"},
                                              {"jw", "jv"},
                                              {"mo", "ro"},
                                              {"no", "nb"},
                                              {"sh", "sr"},
                                              {"tl", "fil"}}};

/// The modifiers that name a script in the locales of the GNU C library 2.36 (ISO 15924 codes).
constexpr std::array<Row, 7> kModifierScript{{{"arabic", "Arab"},
                                              {"cyrillic", "Cyrl"},
                                              {"devanagari", "Deva"},
                                              {"hans", "Hans"},
                                              {"hant", "Hant"},
                                              {"iqtelif", "Latn"},
                                              {"latin", "Latn"}}};

/// Takes what comes before the separator off the text; the whole text if there is none.
std::string_view takeUntil(std::string_view& text, std::string_view separators) noexcept {
    const std::size_t end = std::min(text.find_first_of(separators), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

void applyModifier(PosixLocaleName& name, std::string_view modifier) {
    if (const auto script = translated(kModifierScript, modifier, {}); !script.empty()) name.script = script;
    if (modifier == "valencia") name.variant = modifier;
}

/// Where Chinese is most likely written in the traditional script; CLDR 42, likely subtags. In a table of our
/// own, for the language of the texts must not depend on a module.
constexpr std::array<std::string_view, 15> kTraditionalChinese{"AU", "BN", "GB", "GF", "HK", "ID", "MO", "PA",
                                                               "PF", "PH", "SR", "TH", "TW", "US", "VN"};

/// Written Chinese differs so much by script that its tags always carry one.
void addChineseScript(PosixLocaleName& name) {
    const bool cantonese = name.language == "yue";
    if (!name.script.empty() || (name.language != "zh" && !cantonese)) return;
    if (name.region.empty()) name.region = cantonese ? "HK" : "CN";
    const bool traditional =
        cantonese ? name.region != "CN"
                  : std::ranges::find(kTraditionalChinese, name.region) != kTraditionalChinese.end();
    name.script = traditional ? "Hant" : "Hans";
}

std::string likelyRegion(const std::string& identifier) {
    std::string region;
    const IcuText text(region);
    if (const IcuModule* icu = icuModule()) icu->likelyRegion(identifier.c_str(), &text);
    return region;
}

}  // namespace

std::optional<PosixLocaleName> parsePosixLocaleName(std::string_view name) {
    if (name.size() > kLongestName) return std::nullopt;
    const std::size_t at = std::min(name.find('@'), name.size());
    const std::string_view modifier = name.substr(std::min(at + 1, name.size()));
    std::string_view encoding = name.substr(0, at);
    std::string_view parts = takeUntil(encoding, ".");
    if (!isEncodingOrModifier(modifier) || !isEncodingOrModifier(encoding)) return std::nullopt;

    const std::string_view language = takeUntil(parts, "_-");
    if (!isLanguage(language)) return std::nullopt;
    PosixLocaleName parsed;
    parsed.language = translated(kTodaysLanguage, inLower(language), inLower(language));
    if (inLower(language) == "sh") parsed.script = "Latn";
    std::string_view part = takeUntil(parts, "_-");
    if (isScript(part)) {
        parsed.script = inTitle(part);
        part = takeUntil(parts, "_-");
    }
    if (!part.empty() && !isRegion(part)) return std::nullopt;
    parsed.region = inUpper(part);
    if (!parts.empty()) return std::nullopt;
    applyModifier(parsed, modifier);
    return parsed;
}

std::string localeIdentifierFor(const PosixLocaleName& name) {
    std::string identifier = name.language;
    const auto append = [&](const std::string& part) {
        if (!part.empty()) identifier.append("_").append(part);
    };
    append(name.script);
    const std::string region = name.region.empty() ? likelyRegion(identifier) : name.region;
    if (region != "001") append(region);  // the world is no country
    return identifier;
}

std::optional<std::string> languageTagForPosixName(std::string_view name) {
    auto parsed = parsePosixLocaleName(name);
    if (!parsed) return std::nullopt;
    addChineseScript(*parsed);
    std::string tag = std::move(parsed->language);
    for (const std::string* part : {&parsed->script, &parsed->region, &parsed->variant}) {
        if (!part->empty()) tag.append("-").append(*part);
    }
    return tag;
}

}  // namespace kx
