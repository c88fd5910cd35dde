// SPDX-License-Identifier: MIT

#include "Checks.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>

#include "FormatArguments.h"

namespace kxstrings {

namespace {

using LanguageTables = std::map<std::string, Table>;

/// The library's look-up falls back to this one and to no other.
constexpr const char* kFallback = "en";

/// An entry of one language.
struct Place {
    const std::string* language;
    const Table* table;
    const Entry* entry;
};

/// Where each language has the key, the one that the others are held against first.
std::vector<Place> placesOf(const std::string& key, const LanguageTables& tables) {
    std::vector<Place> places;
    for (const auto& [language, table] : tables) {
        const auto entry = table.entries.find(key);
        if (entry != table.entries.end()) places.push_back({&language, &table, &entry->second});
    }
    const auto fallback = std::ranges::find(places, kFallback, [](const Place& at) { return *at.language; });
    if (fallback != places.end()) std::rotate(places.begin(), fallback, fallback + 1);
    return places;
}

void add(Findings& findings, const Place& at, std::string message) {
    findings.insert({at.table->file, at.entry->line, std::move(message)});
}

std::string listed(const std::set<std::string>& names) {
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
    return list;
}

void findMissing(const std::string& key, const std::vector<Place>& places, const LanguageTables& tables,
                 Findings& findings) {
    std::set<std::string> missing;
    for (const auto& [language, table] : tables) missing.insert(language);
    for (const Place& at : places) missing.erase(*at.language);
    if (!missing.empty()) add(findings, places[0], quoted(key) + " is missing in " + listed(missing));
}

/// A text that equals its key sends the look-up on to English.
void findUntranslated(const std::string& key, const std::vector<Place>& places, Findings& findings) {
    if (*places[0].language != kFallback || places[0].entry->text == key) return;
    for (const Place& at : places) {
        if (at.entry->text == key)
            add(findings, at, quoted(key) + " is its own text, which counts as missing");
    }
}

void findFormats(const std::string& key, const std::vector<Place>& places, Findings& findings) {
    const FormatArguments wanted = formatArguments(places[0].entry->text);
    for (const Place& at : places) {
        const FormatArguments found = formatArguments(at.entry->text);
        if (found.mixed) add(findings, at, quoted(key) + " mixes arguments with and without a number");
        if (found.names == wanted.names) continue;
        add(findings, at,
            quoted(key) + " takes " + described(found) + ", but " + described(wanted) + " in " +
                *places[0].language);
    }
}

void compareTables(const LanguageTables& tables, const IgnoredKeys& ignored, Findings& findings) {
    std::set<std::string> keys;
    for (const auto& [language, table] : tables) {
        for (const auto& [key, entry] : table.entries) keys.insert(key);
    }
    for (const std::string& key : keys) {
        if (ignored.contains(key)) continue;
        const std::vector<Place> places = placesOf(key, tables);
        findMissing(key, places, tables, findings);
        findUntranslated(key, places, findings);
        findFormats(key, places, findings);
    }
}

void findMissingTables(const std::set<std::string>& languages, const std::string& name,
                       const LanguageTables& tables, Findings& findings) {
    std::set<std::string> missing = languages;
    for (const auto& [language, table] : tables) missing.erase(language);
    if (missing.empty()) return;
    const auto fallback = tables.find(kFallback);
    const Table& shown = fallback == tables.end() ? tables.begin()->second : fallback->second;
    findings.insert({shown.file, 1, "the table \"" + name + "\" is missing in " + listed(missing)});
}

void findUnused(const LanguageTables& tables, const std::function<bool(std::string_view)>& isUsed,
                Findings& findings) {
    std::set<std::string> told;
    for (const auto& [language, table] : tables) {
        for (const auto& [key, entry] : table.entries) {
            if (isUsed(key) || !told.insert(key).second) continue;
            add(findings, placesOf(key, tables)[0], quoted(key) + " is used by no source");
        }
    }
}

}  // namespace

bool IgnoredKeys::contains(std::string_view key) const {
    return std::ranges::any_of(patterns_, [&](std::string_view pattern) {
        if (!pattern.ends_with('*')) return key == pattern;
        return key.starts_with(pattern.substr(0, pattern.size() - 1));
    });
}

void compareLanguages(const Tables& tables, const IgnoredKeys& ignored, Findings& findings) {
    for (const auto& [name, languageTables] : tables.byName) {
        findMissingTables(tables.languages, name, languageTables, findings);
        compareTables(languageTables, ignored, findings);
    }
}

void compareWithSources(const Tables& tables, const KeyUses& uses, const IgnoredKeys& ignored,
                        Findings& findings) {
    const auto isUsed = [&](std::string_view key) { return ignored.contains(key) || uses.uses(key); };
    for (const auto& [name, languageTables] : tables.byName) findUnused(languageTables, isUsed, findings);

    const auto keys = tables.keys();
    for (const LookedUpKey& use : uses.lookedUp()) {
        if (ignored.contains(use.key)) continue;
        if (!use.isBeginning && !keys.contains(use.key))
            findings.insert({use.file, use.line, "no table has " + quoted(use.key)});
        const auto next = keys.lower_bound(use.key);
        if (use.isBeginning && (next == keys.end() || !next->starts_with(use.key)))
            findings.insert({use.file, use.line, "no table has a key that begins with " + quoted(use.key)});
    }
}

}  // namespace kxstrings
