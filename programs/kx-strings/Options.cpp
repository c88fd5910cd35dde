// SPDX-License-Identifier: MIT

#include "Options.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string_view>
#include <system_error>

#include <getopt.h>

namespace kxstrings {

const char* const kUsage =
    "usage: kx-strings [--sources DIR]... [--function NAME]... [--ignore KEY]... RESOURCES_DIR\n"
    "Checks the string tables RESOURCES_DIR/<language>.lproj/<table>.strings: missing and duplicate keys,\n"
    "format arguments that differ between languages, bad encoding, entries that cannot be read.\n"
    "\n"
    "  --sources DIR      check against the C++ sources in DIR too: keys that none of them uses, and keys "
    "that\n"
    "                     are looked up though no table has them\n"
    "  --function NAME    a call of NAME looks up its first argument, as those of the library do;\n"
    "                     NAME:2 looks up its second one\n"
    "  --ignore KEY       say nothing of this key; KEY* means all that begin so\n"
    "  --help             show this page\n"
    "\n"
    "Exit status: 0 if all is well, 1 if there are findings, 2 for wrong use.\n";

namespace {

bool addFunction(Functions& functions, std::string_view spelling) {
    const std::size_t colon = std::min(spelling.find(':'), spelling.size());
    std::size_t argument = 1;
    if (colon < spelling.size()) {
        const std::string_view number = spelling.substr(colon + 1);
        const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), argument);
        if (error != std::errc() || end != number.data() + number.size() || argument == 0) return false;
    }
    functions[std::string(spelling.substr(0, colon))] = argument;
    return colon > 0;
}

bool apply(Options& options, int option) {
    switch (option) {
        case 's':
            options.sources.emplace_back(optarg);
            return true;
        case 'f':
            if (addFunction(options.functions, optarg)) return true;
            std::fprintf(stderr, "kx-strings: no function: %s\n", optarg);
            return false;
        case 'i':
            options.ignored.add(optarg);
            return true;
        case 'h':
            options.help = true;
            return true;
        default:
            return false;  // getopt_long has told why
    }
}

}  // namespace

std::optional<Options> readOptions(int argc, char** argv) {
    constexpr option kOptions[] = {{"sources", required_argument, nullptr, 's'},
                                   {"function", required_argument, nullptr, 'f'},
                                   {"ignore", required_argument, nullptr, 'i'},
                                   {"help", no_argument, nullptr, 'h'},
                                   {}};
    Options options;
    bool right = true;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): before there is another thread
    for (int option = 0; (option = getopt_long(argc, argv, "h", kOptions, nullptr)) != -1;)
        right = apply(options, option) && right;
    if (options.help) return options;
    if (right && optind + 1 == argc) {
        options.folder = argv[optind];
        return options;
    }
    if (right)
        std::fprintf(stderr, "kx-strings: %s\n",
                     optind == argc ? "which folder holds the tables?" : "one folder, not several");
    std::fputs(kUsage, stderr);
    return std::nullopt;
}

}  // namespace kxstrings
