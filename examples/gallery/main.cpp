// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Views/NSApplication.h>

#include "Gallery.h"
#include "Headless.h"
#include "SteadyWorld.h"
#include "TemporaryHome.h"

namespace {

constexpr const char* kUsage =
    "usage: gallery [--headless DIRECTORY [--scale NUMBER] [--dark]] [--page NAME] [--steady]\n"
    "\n"
    "  --headless DIRECTORY  draw the pages into pictures there, in four languages, without a display\n"
    "  --scale NUMBER        pixels to the point in these pictures, 0.5 to 4; 2 unless said\n"
    "  --dark                in the dark look\n"
    "  --page NAME           only this page, or the one to begin with: language, objects, toast, ...\n"
    "  --steady              with texts and times that are the same on every machine\n";

int wrongUse(std::string_view option, const char* what) {
    std::fprintf(stderr, "gallery: %s: %s\n%s", std::string(option).c_str(), what, kUsage);
    return 2;
}

/// Looked at before a display is tried, so that it stays at one line.
bool namesDisplay() {
    const auto isSet = [](const char* name) {
        const char* value = std::getenv(name);
        return value && *value;
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

int withoutDisplay() {
    std::fputs("gallery: there is no display; --headless DIRECTORY draws the pages into pictures\n", stderr);
    return 1;
}

int runInWindow(const std::string& page) {
    if (!namesDisplay()) return withoutDisplay();
    gallery::Gallery gallery;
    gallery.restore();
    if (!page.empty() && !gallery.show(page)) {
        std::fprintf(stderr, "gallery: there is no page \"%s\"\n", page.c_str());
        return 1;
    }
    gallery.window()->makeKeyAndOrderFront();
    if (!gallery.window()->surface()) return withoutDisplay();
    kx::NSApplication::sharedApplication()->run();
    gallery.remember();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::string directory;
    std::string page;
    double scale = 2;
    bool isSteady = false;
    auto look = kx::NSAppearance::Light;
    for (int i = 1; i < argc; ++i) {
        const std::string_view option = argv[i];
        if (option == "--steady") {
            isSteady = true;
            continue;
        }
        if (option == "--dark") {
            look = kx::NSAppearance::Dark;
            continue;
        }
        if (option == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        }
        const bool takesValue = option == "--headless" || option == "--page" || option == "--scale";
        if (!takesValue) return wrongUse(option, "no such option");
        if (i + 1 == argc) return wrongUse(option, "its value is missing");
        if (option == "--headless") {
            directory = argv[++i];
        } else if (option == "--page") {
            page = argv[++i];
        } else {
            scale = std::clamp(std::atof(argv[++i]), 0.5, 4.0);
        }
    }
    std::optional<gallery::SteadyWorld> steady;
    if (isSteady) steady.emplace();
    if (directory.empty()) return runInWindow(page);
    std::optional<gallery::TemporaryHome> home;
    if (!isSteady) home.emplace(gallery::TemporaryHome::Others::Kept);
    return gallery::drawPages(directory, page, scale, look);
}
