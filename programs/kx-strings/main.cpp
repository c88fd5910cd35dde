// SPDX-License-Identifier: MIT

// Checks an application's string tables, by themselves and against its sources.
#include <cstdio>
#include <string>

#include "Checks.h"
#include "Finding.h"
#include "KeyUses.h"
#include "Options.h"
#include "Tables.h"

namespace {

using namespace kxstrings;

constexpr int kClean = 0;
constexpr int kFound = 1;
constexpr int kWrongUse = 2;

std::string counted(std::size_t number, const std::string& one, const std::string& many) {
    return std::to_string(number) + ' ' + (number == 1 ? one : many);
}

int wrongUse(const kx::Error& error) {
    std::fprintf(stderr, "kx-strings: %s\n", error.message().c_str());
    return kWrongUse;
}

void show(const Findings& findings, const Tables& tables, const KeyUses& uses) {
    for (const auto& [file, line, message] : findings)
        std::printf("%s:%zu: %s\n", file.c_str(), line, message.c_str());
    std::printf("%s, %s, %s, %s: %s\n", counted(tables.languages.size(), "language", "languages").c_str(),
                counted(tables.byName.size(), "table", "tables").c_str(),
                counted(tables.keys().size(), "key", "keys").c_str(),
                counted(uses.sources(), "source", "sources").c_str(),
                findings.empty() ? "clean" : counted(findings.size(), "finding", "findings").c_str());
}

int check(const Options& options) {
    Findings findings;
    const auto tables = readTables(options.folder, findings);
    if (!tables) return wrongUse(tables.error());
    KeyUses uses(options.functions);
    for (const std::string& path : options.sources) {
        if (const auto added = uses.addSources(path, findings); !added) return wrongUse(added.error());
    }
    compareLanguages(tables.value(), options.ignored, findings);
    if (!options.sources.empty()) compareWithSources(tables.value(), uses, options.ignored, findings);
    show(findings, tables.value(), uses);
    return findings.empty() ? kClean : kFound;
}

}  // namespace

int main(int argc, char** argv) {
    const auto options = readOptions(argc, argv);
    if (!options) return kWrongUse;
    if (!options->help) return check(*options);
    std::fputs(kUsage, stdout);
    return kClean;
}
