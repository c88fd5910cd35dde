// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Result.h>

#include "Finding.h"

namespace kxstrings {

struct Entry {
    std::string text;
    std::size_t line;
};

/// One file `<language>.lproj/<name>.strings`.
struct Table {
    std::string file;
    std::map<std::string, Entry, std::less<>> entries;
};

struct Tables {
    std::set<std::string> languages;
    /// By the name of the table, then by the language; only those that are there.
    std::map<std::string, std::map<std::string, Table>> byName;

    [[nodiscard]] std::set<std::string, std::less<>> keys() const;
};

/// Reads every table of the folder as the library does; what is wrong with the files themselves (faulty
/// entries, duplicate keys, bad encoding) goes into the findings. An error if the folder holds no language.
[[nodiscard]] kx::Result<Tables> readTables(const std::string& folder, Findings& findings);

/// One table from the bytes of its file.
[[nodiscard]] Table readTable(std::string file, std::string contents, Findings& findings);

}  // namespace kxstrings
