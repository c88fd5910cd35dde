// SPDX-License-Identifier: MIT

// What the machine itself offers: libraries for network, dates, photos and videos, torch, fonts.
#include <algorithm>
#include <array>

#include <KXFoundation/Platform/Foundation/CurlURLLoader.h>
#include <KXFoundation/Platform/Foundation/HTTPModule.h>
#include <KXFoundation/Platform/Foundation/IcuModule.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Services/AVAsset.h>
#include <KXFoundation/Platform/Services/CapabilityProbes.h>
#include <KXFoundation/Platform/Services/SqliteModule.h>
#include <KXFoundation/Platform/Services/Torch.h>

namespace kx {

namespace {

constexpr int kDeepestFolder = 4;

bool isFont(std::string_view name) {
    static constexpr std::array<std::string_view, 5> kEndings = {".ttf", ".otf", ".ttc", ".pfb", ".pcf.gz"};
    return std::ranges::any_of(kEndings, [&](std::string_view ending) { return name.ends_with(ending); });
}

/// The first font file in a folder or those in it.
std::optional<std::string> fontBelow(FileSystem& files, const std::string& folder, int depth = 0) {
    const auto names = files.list(folder);
    if (!names || depth > kDeepestFolder) return std::nullopt;
    const auto pathOf = [&](const std::string& name) { return (folder + '/').append(name); };
    if (const auto found = std::ranges::find_if(*names, isFont); found != names->end()) return pathOf(*found);
    for (const std::string& name : *names) {
        if (auto found = fontBelow(files, pathOf(name), depth + 1)) return found;
    }
    return std::nullopt;
}

/// Where fonts are, by the XDG base directories and before them.
std::vector<std::string> fontFolders() {
    std::vector<std::string> folders = {"/usr/share/fonts", "/usr/local/share/fonts"};
    if (const auto data = baseDirectory(BaseDirectory::Data)) folders.push_back(*data + "/fonts");
    if (const auto home = Environment::slot().current().variable("HOME"))
        folders.push_back(*home + "/.fonts");
    return folders;
}

}  // namespace

Capability probeFonts(Patience) {
    const auto files = FileSystem::slot().shared();
    for (const std::string& folder : fontFolders()) {
        if (const auto font = fontBelow(*files, folder)) return {"fonts", true, *font + " and others"};
    }
    return {"fonts", false, "no font file in the system's folders"};
}

Capability probeCurl(Patience) {
    const HTTPModule* module = httpModule();
    if (!module) return {"curl", false, "the module for HTTPS is not installed"};
    return {"curl", true, module->description()};
}

Capability probeDates(Patience) {
    const bool works = icuModule() != nullptr;
    return {"dates", works, works ? "ICU" : "the module for ICU is not installed"};
}

Capability probePhotos(Patience) {
    const bool works = sqliteModule() != nullptr;
    return {"photos", works, works ? "SQLite" : "the module for SQLite is not installed"};
}

Capability probeVideo(Patience) {
    const auto library = videoLibrary();
    return {"video", library.ok(), library ? *library : library.error().message()};
}

Capability probeTorch(Patience) {
    Torch& torch = Torch::slot().current();
    const auto name = torch.name();
    if (!name) return {"torch", false, "no light is named torch or flash"};
    const auto may = torch.maySet();
    return {"torch", may.ok(), may.ok() ? *name : may.error().message()};
}

}  // namespace kx
