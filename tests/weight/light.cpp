// SPDX-License-Identifier: MIT

// A small service that links the Foundation library and uses one cheap function of it: what is heavy must not
// have been mapped for that. Prints what was.
#include <cstdio>
#include <fstream>
#include <set>
#include <string>

#include <KXFoundation/Device/KXToolUtils.h>

namespace {

constexpr const char* kHeavy[] = {"curl",   "crypto", "libssl",         "sodium",   "secret", "gio-2",
                                  "glib-2", "SDL",    "avcodec",        "avformat", "avutil", "cairo",
                                  "icu",    "sqlite", "KXFoundationUI", "kx-"};

/// The files that the process has mapped.
std::set<std::string> mappedFiles() {
    std::set<std::string> files;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        const std::size_t at = line.find('/');
        if (at != line.npos) files.insert(line.substr(at));
    }
    return files;
}

}  // namespace

int main() {
    if (kx::KXToolUtils::calculateMD5("abc") != "900150983cd24fb0d6963f7d28e17f72") return 1;
    bool hasLibrary = false;
    int heavy = 0;
    for (const std::string& file : mappedFiles()) {
        const std::string name = file.substr(file.rfind('/') + 1);
        hasLibrary = hasLibrary || name.starts_with("libKXFoundation.so");
        for (const char* part : kHeavy) {
            if (name.find(part) == name.npos) continue;
            std::printf("mapped: %s\n", file.c_str());
            ++heavy;
        }
    }
    if (!hasLibrary) std::puts("the library itself is not mapped: nothing was looked at");
    return heavy == 0 && hasLibrary ? 0 : 1;
}
