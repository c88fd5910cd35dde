// SPDX-License-Identifier: MIT

#include "Tables.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Foundation/StringTable.h>
#include <KXFoundation/Platform/Foundation/StringTableReader.h>
#include <KXFoundation/Platform/Foundation/Utf8Validation.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kxstrings {

namespace fs = std::filesystem;

namespace {

/// The lines of a text, remembered because reading a table changes its text in place.
class Lines {
  public:
    explicit Lines(std::string_view text) {
        for (std::size_t begin = 0; begin <= text.size();) {
            const std::size_t end = std::min(text.find('\n', begin), text.size());
            if (!kx::isUtf8(text.substr(begin, end - begin))) broken_.push_back(ends_.size() + 1);
            ends_.push_back(end);
            begin = end + 1;
        }
    }

    [[nodiscard]] std::size_t at(std::size_t offset) const {
        return 1 + static_cast<std::size_t>(std::ranges::lower_bound(ends_, offset) - ends_.begin());
    }
    /// Those with bytes of no encoding.
    [[nodiscard]] const std::vector<std::size_t>& broken() const { return broken_; }

  private:
    std::vector<std::size_t> ends_;
    std::vector<std::size_t> broken_;
};

void addEntry(Table& table, const kx::StringTableEntry& read, std::size_t line, Findings& findings) {
    const auto [entry, isNew] = table.entries.try_emplace(std::string(read.key), Entry{"", line});
    if (!isNew) {
        findings.insert(
            {table.file, line,
             "duplicate key " + quoted(read.key) + ", also on line " + std::to_string(entry->second.line)});
    }
    entry->second = {std::string(read.text), line};  // the later one stays, as in the library
}

/// The paths in a directory whose names end so, by the rest of their names. One that cannot be read is a
/// finding.
std::map<std::string, fs::path> endingIn(const fs::path& directory, std::string_view ending,
                                         Findings& findings) {
    std::map<std::string, fs::path> found;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error); !error && entry != fs::end(entry);
         entry.increment(error)) {
        const fs::path& path = entry->path();
        if (path.extension() == ending) found.emplace(path.stem().string(), path.lexically_normal());
    }
    if (error) findings.insert({directory.string(), 1, error.message()});
    return found;
}

Table loadTable(const std::string& file, Findings& findings) {
    auto contents = kx::readFile(kx::FileSystem::slot().current(), file, kx::StringTable::kLargestFile);
    if (contents) return readTable(file, *std::move(contents), findings);
    findings.insert({file, 1, contents.error().message()});
    return {file, {}};
}

}  // namespace

std::set<std::string, std::less<>> Tables::keys() const {
    std::set<std::string, std::less<>> keys;
    for (const auto& [name, languageTables] : byName) {
        for (const auto& [language, table] : languageTables) {
            for (const auto& [key, entry] : table.entries) keys.insert(key);
        }
    }
    return keys;
}

Table readTable(std::string file, std::string contents, Findings& findings) {
    Table table{std::move(file), {}};
    std::string text = kx::stringTableText(std::move(contents));
    const Lines lines(text);
    std::set<std::size_t> faulty;
    const auto take = [&](const kx::StringTableEntry& entry) {
        addEntry(table, entry, lines.at(static_cast<std::size_t>(entry.key.data() - text.data())), findings);
    };
    const auto tell = [&](std::size_t offset, const char* reason) {
        faulty.insert(lines.at(offset));
        findings.insert({table.file, lines.at(offset), std::string(reason) + "; the entry is left out"});
    };
    (void)kx::readStringTable(text, take, tell);
    for (const std::size_t line : lines.broken()) {
        if (!faulty.contains(line)) findings.insert({table.file, line, "no UTF-8"});
    }
    return table;
}

/// A folder without a table localizes other things than texts: it is no language here.
kx::Result<Tables> readTables(const std::string& folder, Findings& findings) {
    Tables tables;
    for (const auto& [language, directory] : endingIn(folder, ".lproj", findings)) {
        for (const auto& [name, file] : endingIn(directory, ".strings", findings)) {
            tables.languages.insert(language);
            tables.byName[name].emplace(language, loadTable(file.string(), findings));
        }
    }
    if (tables.languages.empty())
        return kx::Error{kx::ErrorKind::Missing, 0, "tables <language>.lproj/<table>.strings in " + folder};
    return tables;
}

}  // namespace kxstrings
