// SPDX-License-Identifier: MIT

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>
#include <png.h>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Platform/Views/OffscreenSurface.h>
#include <KXFoundation/Testing/PictureComparison.h>
#include <KXFoundation/Testing/ScopedLanguageState.h>
#include <KXFoundation/Testing/ScopedQueues.h>

#include "Column.h"
#include "Gallery.h"
#include "Headless.h"
#include "SteadyWorld.h"

namespace kx::testing {
namespace {

using gallery::Gallery;

/// The same font files and libraries draw the same pixels on every machine, but for last bits where a
/// processor's own instructions round otherwise: a channel may differ by 12 of 255, and no pixel by more. Of
/// the moves by one point below, the faintest changes a channel by 42, the smallest 26 pixels.
constexpr Tolerance kTolerance{.channel = 12, .pixels = 0};

enum class Shown : std::uint8_t {
    Page,     ///< without the side list, which is the same beside every page
    Window,   ///< all of it
    Dark,     ///< the page in the dark
    SmallEnd  ///< the end of the page, in a window of 640 x 400
};

struct Picture {
    std::string_view page;
    const char* language = "en";
    double scale = 1;
    Shown shown = Shown::Page;
    int frames = 0;  ///< of a tenth of a second, that pass before
};

/// Every page once, and again where something else draws it: lines from right to left, letters of another
/// font, two pixels to the point, other colours, a scrolled page.
std::vector<Picture> pictures() {
    std::vector<Picture> pictures = {
        {"language", "en", 1, Shown::Window},
        {"language", "ar", 1, Shown::Window},
        {"language", "en", 1, Shown::Dark},
        {"cache", "en", 1, Shown::Page, 12},
        {"cache", "en", 1, Shown::SmallEnd},
        {"calendar", "ar"},
        {"text", "ar"},
        {"text", "zh-Hans"},
        {"pictures", "en", 2},
        {"toast", "ar", 2},
        {"loading", "en", 1, Shown::Page, 6},
        {"buttons", "ar", 2},
    };
    for (const char* page : {"objects", "application", "requests", "links", "time", "calendar", "device",
                             "keychain", "text", "album", "animation", "pictures", "image-cache", "colours",
                             "toast", "mask", "buttons", "screen", "once"})
        pictures.push_back({page});
    return pictures;
}

/// Not "@2x", which would make it the sharper version of its neighbour.
std::string nameOf(const Picture& picture) {
    std::string name(picture.page);
    if (std::string_view(picture.language) != "en") name += std::string("-") + picture.language;
    if (picture.shown == Shown::Dark) name += "-dark";
    if (picture.shown == Shown::SmallEnd) name += "-small";
    return picture.scale == 1 ? name : name + "-2x";
}

void PrintTo(const Picture& picture, std::ostream* out) {
    *out << nameOf(picture);
}

/// A gallery in a world of its own that shows the page as a person finds it after using it.
class Stage {
  public:
    explicit Stage(const Picture& picture)
        : picture_(picture),
          windows_(std::make_shared<OffscreenWindowSystem>(picture.scale, NSSize{1440, 900},
                                                           OffscreenPixels::Copied)) {
        NSBundle::setMainBundlePath(KX_GALLERY_BUNDLE);
        KXLocalizationUtils::setSelectLanguage(picture.language);
        gallery_ = std::make_unique<Gallery>();
        gallery_->show(picture.page);
        NSWindow& window = *gallery_->window();
        if (picture.shown == Shown::Dark) window.setAppearance(NSAppearance::Dark);
        if (picture.shown == Shown::SmallEnd) window.setFrame({0, 0, 640, 400});
        window.makeKeyAndOrderFront();
        gallery::drawDemonstration(*gallery_);
        for (int frame = 0; frame < picture.frames; ++frame) {
            world_.clock().advance(std::chrono::milliseconds(100));
            window.displayIfNeeded();
        }
        if (picture.shown == Shown::SmallEnd)
            window.sendEvent({.type = NSEventType::KeyDown, .characters = std::string(NSEndFunctionKey)});
    }

    void show(std::string_view page) {
        gallery_->show(page);
        gallery::drawDemonstration(*gallery_);
    }

    [[nodiscard]] std::shared_ptr<NSView> root() const { return gallery_->window()->contentView(); }
    /// Where the page is in the window.
    [[nodiscard]] NSRect page() const {
        const NSSize size = root()->frame().size;
        if (picture_.shown == Shown::Window) return {{}, size};
        return gallery::directed({Gallery::kSideWidth, 0, size.width - Gallery::kSideWidth, size.height},
                                 size.width);
    }
    [[nodiscard]] std::shared_ptr<NSBitmapImageRep> pixels() const {
        gallery_->window()->displayIfNeeded();
        const auto surface = std::static_pointer_cast<OffscreenSurface>(gallery_->window()->surface());
        const auto whole = surface->bitmap();
        const NSRect part = page();
        const auto length = [&](double points) {
            return static_cast<std::uint32_t>(points * picture_.scale);
        };
        auto cut = NSBitmapImageRep::bitmapWithPixels(length(part.size.width), length(part.size.height));
        for (std::uint32_t y = 0; y < cut->pixelsHigh(); ++y) {
            const auto row = whole->pixels().subspan(y * whole->pixelsWide() + length(part.origin.x));
            std::copy_n(row.begin(), cut->pixelsWide(),
                        cut->pixels().begin() + std::ptrdiff_t{y} * cut->pixelsWide());
        }
        return cut;
    }

  private:
    const Picture picture_;
    gallery::SteadyWorld world_;
    ScopedPort<WindowSystem> windows_;
    ScopedLanguageState language_;
    ScopedProcessState process_;
    ScopedQueues queues_;
    std::unique_ptr<Gallery> gallery_;
};

/// Writes an opaque picture as a PNG: slower and smaller than the library does, as it is kept in the
/// repository.
bool writeSmallPicture(const NSBitmapImageRep& picture, const std::string& path) {
    std::vector<std::uint8_t> rgb;
    for (const std::uint32_t pixel : picture.pixels())
        for (const int shift : {16, 8, 0}) rgb.push_back(static_cast<std::uint8_t>(pixel >> shift));
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.pixelsWide();
    image.height = picture.pixelsHigh();
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr) != 0;
}

struct Golden : ::testing::TestWithParam<Picture> {};

TEST_P(Golden, PageIsAsItWas) {
    const std::string name = nameOf(GetParam());
    const std::string path = KX_GOLDEN_PICTURES + name + ".png";
    const auto now = Stage(GetParam()).pixels();
    const auto before = readPicture(path);
    const Difference difference = before ? compare(**before, *now, kTolerance) : Difference();
    if (difference.accepted) return;
    const std::string differences = KX_GOLDEN_DIFFERENCES + name + ".png";
    if (before && writePicture(*sideBySide(**before, *now, kTolerance), differences))
        std::cout << "old, new and what differs, side by side: " << differences << '\n';
    if (std::getenv("KX_UPDATE_PICTURES")) {
        ASSERT_TRUE(writeSmallPicture(*now, path)) << path;
    } else {
        FAIL() << (before ? path + ": " + difference.describe() : before.error().message());
    }
}

INSTANTIATE_TEST_SUITE_P(, Golden, ::testing::ValuesIn(pictures()), [](const auto& row) {
    std::string name = nameOf(row.param);
    std::ranges::replace(name, '-', '_');
    return name;
});

/// The views that hold no others: what a person takes for the controls.
void collectControls(const std::shared_ptr<NSView>& view, std::vector<std::shared_ptr<NSView>>& found) {
    if (view->subviews().empty()) found.push_back(view);
    for (const auto& subview : view->subviews()) collectControls(subview, found);
}

TEST(GoldenTolerance, EveryControlThatMovesByAPointIsNoticed) {
    for (const char* page : {"language", "calendar", "pictures", "keychain", "buttons"}) {
        const Stage stage({page});
        const auto before = stage.pixels();
        std::vector<std::shared_ptr<NSView>> controls;
        collectControls(stage.root(), controls);
        std::size_t moved = 0;
        for (const auto& control : controls) {
            control->setHidden(true);
            const bool isSeen = compare(*before, *stage.pixels()).pixels > 0;
            control->setHidden(false);
            for (const NSPoint step : {NSPoint{1, 0}, NSPoint{0, 1}}) {
                if (!isSeen) break;
                const NSRect place = control->frame();
                control->setFrame(place.movedBy(step));
                EXPECT_FALSE(compare(*before, *stage.pixels(), kTolerance).accepted)
                    << page << ": " << control->description();
                control->setFrame(place);
                ++moved;
            }
        }
        EXPECT_GT(moved, 10U) << page;
        EXPECT_EQ(compare(*before, *stage.pixels()).pixels, 0U) << page;
    }
}

TEST(SmallWindow, TabBringsEveryControlIntoSight) {
    const Stage stage({"once", "en", 1, Shown::SmallEnd});
    const auto window = stage.root()->window();
    for (std::size_t i = 0; i < gallery::pages().size() + 6; ++i) {
        window->sendEvent({.type = NSEventType::KeyDown, .characters = "\t"});
        const auto view = std::dynamic_pointer_cast<NSView>(window->firstResponder());
        ASSERT_TRUE(view);
        const NSRect place = view->convertRectToView(view->bounds(), nullptr);
        EXPECT_TRUE(place.origin.y >= 0 && place.maxY() <= 400) << view->description() << ", Tab " << i;
    }
}

/// Whether the control shows less than it was given, or reaches out of the window at a side.
bool isCut(const NSView& view) {
    const NSSize size = view.frame().size;
    const double left = view.convertRectToView(view.bounds(), nullptr).origin.x;
    if (left < 0 || left + size.width > Gallery::kWidth) return true;
    if (const auto* text = dynamic_cast<const NSTextView*>(&view))
        return TextLayout(text->string(), text->font(), {.width = size.width}).size().height >
               size.height + 1;
    const auto* field = dynamic_cast<const NSTextField*>(&view);
    if (!dynamic_cast<const NSButton*>(&view) && (!field || field->isEditable())) return false;
    return view.intrinsicContentSize().width > size.width;
}

std::string wordsOf(const NSView& view) {
    if (const auto* button = dynamic_cast<const NSButton*>(&view)) return button->title();
    if (const auto* field = dynamic_cast<const NSTextField*>(&view)) return field->stringValue();
    return view.description();
}

TEST(Captions, FitTheirControlsInEveryLanguage) {
    for (const char* language : {"ar", "de", "en", "es", "es-419", "fr", "it", "ja", "ko", "pt", "pt-BR",
                                 "ru", "zh-Hans", "zh-Hant"}) {
        Stage stage({gallery::pages().front().name, language});
        for (const auto& page : gallery::pages()) {
            stage.show(page.name);
            std::vector<std::shared_ptr<NSView>> controls;
            collectControls(stage.root(), controls);
            EXPECT_GT(controls.size(), gallery::pages().size());
            for (const auto& control : controls)
                EXPECT_FALSE(isCut(*control))
                    << page.name << ", " << language << ": " << wordsOf(*control) << control->description();
        }
    }
}

}  // namespace
}  // namespace kx::testing
