// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/OffscreenWindow.h>
#include <KXFoundation/Testing/PictureComparison.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

#include "HarbourWindow.h"

using namespace kx;
using namespace kx::testing;

static int failures = 0;

static void expect(bool holds, const char* what) {
    if (holds) return;
    std::printf("not so: %s\n", what);
    ++failures;
}

/// Given a file's name, it also draws the window with its toast there, as PNG.
int main(int argc, char** argv) {
    ScopedPlatform platform(HARBOUR_RESOURCES);
    const auto clock = std::make_shared<ManualClock>();
    const ScopedPort<Clock> time{clock};
    std::unique_ptr<HarbourWindow> harbour;
    const OffscreenWindow shown([&] {
        harbour = std::make_unique<HarbourWindow>();
        return harbour->window;
    });
    expect(harbour->title->stringValue() == "The harbour in the morning", "the title is English");
    expect(shown.pixel(180, 150) != shown.pixel(5, 150), "there is a picture");

    shown.click(*harbour->save);
    expect(harbour->window->childWindows().size() == 1, "a toast is shown");
    if (argc > 1) expect(writePicture(*shown.picture(), argv[1]).ok(), "the picture is written");
    clock->advance(std::chrono::seconds(3));
    expect(harbour->window->childWindows().empty(), "it is gone after three seconds");

    const auto application = NSApplication::sharedApplication();
    shown.click(*harbour->language);
    application->displayIfNeeded();  // the next frame
    expect(harbour->save->title() == "Enregistrer", "the button is French");
    shown.click(*harbour->language);
    application->displayIfNeeded();
    expect(harbour->title->alignment() == NSTextAlignment::Right, "Arabic is on the right");
    const auto cache =
        KXImageCache::shareInstanceWithPath(*baseDirectory(BaseDirectory::Cache) + "/org.example.harbour");
    expect(cache && cache->containsImageForKey("harbour", KXImageCache::kDisk),
           "the picture is kept on disk");
    std::puts(failures ? "failed" : "passed");
    return failures ? 1 : 0;
}
