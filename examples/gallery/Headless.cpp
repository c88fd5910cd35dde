// SPDX-License-Identifier: MIT

#include "Headless.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Views/OffscreenSurface.h>

#include "Gallery.h"

namespace gallery {

using namespace kx;

namespace {

constexpr const char* kLanguages[] = {"en", "ar", "zh-Hans", "de"};

bool writePicture(Gallery& gallery, const std::string& path) {
    const auto surface = std::dynamic_pointer_cast<OffscreenSurface>(gallery.window()->surface());
    if (!surface) return false;
    drawDemonstration(gallery);
    const auto png = surface->png();
    if (!png) return false;
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(png->data()), static_cast<std::streamsize>(png->size()));
    return static_cast<bool>(file.flush());
}

bool drawPage(Gallery& gallery, std::string_view name, const std::string& directory) {
    for (const char* language : kLanguages) {
        KXLocalizationUtils::setSelectLanguage(language);
        gallery.show(name);
        const std::string path = directory + "/" + std::string(name) + "-" + language + ".png";
        if (!writePicture(gallery, path)) {
            std::fprintf(stderr, "gallery: cannot write %s\n", path.c_str());
            return false;
        }
    }
    return true;
}

}  // namespace

void drawDemonstration(Gallery& gallery) {
    NSWindow& window = *gallery.window();
    window.displayIfNeeded();
    drainQueues();  // what the page began when it was shown
    gallery.demonstrate();
    drainQueues();
    window.displayIfNeeded();
}

int drawPages(const std::string& directory, const std::string& page, double scale, NSAppearance look) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    WindowSystem::slot().replace(std::make_shared<OffscreenWindowSystem>(scale));
    Gallery gallery;
    gallery.window()->setAppearance(look);
    gallery.window()->makeKeyAndOrderFront();
    bool drawn = false;
    for (const PageEntry& entry : pages()) {
        if (!page.empty() && entry.name != page) continue;
        if (!drawPage(gallery, entry.name, directory)) return 1;
        drawn = true;
    }
    if (!drawn) {
        std::fprintf(stderr, "gallery: there is no page \"%s\"\n", page.c_str());
        return 1;
    }
    std::printf("The pages are in %s\n", directory.c_str());
    return 0;
}

}  // namespace gallery
