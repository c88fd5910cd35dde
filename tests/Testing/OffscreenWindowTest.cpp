// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Testing/OffscreenWindow.h>
#include <KXFoundation/Testing/PictureComparison.h>
#include <KXFoundation/Testing/ScopedFonts.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx::testing {
namespace {

using ::testing::ElementsAre;

/// Writes down what it is told.
class Listener : public Subclass<Listener, NSView> {
  public:
    bool acceptsFirstResponder() const override { return true; }
    void mouseDown(const NSEvent& event) override { note("down", event); }
    void mouseDragged(const NSEvent& event) override { note("dragged", event); }
    void mouseUp(const NSEvent& event) override { note("up", event); }
    void scrollWheel(const NSEvent& event) override { note("wheel", event); }
    void keyDown(const NSEvent& event) override { heard.push_back(event.characters); }

    std::vector<std::string> heard;

  private:
    void note(const std::string& what, const NSEvent& event) {
        heard.push_back(what + " " + std::to_string(int(event.locationInWindow.x)) + " " +
                        std::to_string(event.clickCount));
    }
};

TEST(OffscreenWindow, IsUsedByMouseAndKeyboard) {
    const OffscreenWindow shown({100, 100});
    const auto listener = make<Listener>(NSRect(10, 10, 80, 80));
    shown.content().addSubview(listener);
    const auto heard = [&] { return std::exchange(listener->heard, {}); };
    shown.click({20, 20}, 2);
    EXPECT_THAT(heard(), ElementsAre("down 20 1", "up 20 1", "down 20 2", "up 20 2"));
    shown.drag({20, 20}, {60, 20});
    EXPECT_THAT(heard(), ElementsAre("down 20 1", "dragged 60 1", "up 60 1"));
    shown.scroll({30, 30}, {0, -1});
    EXPECT_THAT(heard(), ElementsAre("wheel 30 0"));
    shown.window->makeFirstResponder(listener);
    shown.type("aé日");
    EXPECT_THAT(heard(), ElementsAre("a", "é", "日"));
}

TEST(OffscreenWindow, AViewIsClickedWhereItIsSeen) {
    const OffscreenWindow shown({100, 100});
    const auto child = make<NSWindow>(NSRect(0, 0, 40, 30));
    shown.window->addChildWindow(child, NSWindowOrderingMode::Above);
    child->setFrame({30, 50, 40, 30});
    const auto button = make<NSButton>(NSRect(10, 5, 20, 20));
    child->contentView()->addSubview(button);
    int clicks = 0;
    button->setAction([&](NSControl&) { ++clicks; });
    shown.click(*button);
    EXPECT_EQ(clicks, 1);
    button->setHidden(true);
    shown.click(*button);
    EXPECT_EQ(clicks, 1);
    button->setHidden(false);
    button->setAction([&](NSControl&) { shown.window->close(); });
    shown.click(*button, 2);
    EXPECT_FALSE(shown.window->isVisible());
}

TEST(PictureComparison, SaysHowPicturesDiffer) {
    const TemporaryDirectory directory;
    const auto path = directory / "kept.png";
    auto picture = NSBitmapImageRep::bitmapWithPixels(4, 4);
    for (std::uint32_t& pixel : picture->pixels()) pixel = 0xFF102030;
    EXPECT_EQ(compareWithFile(*picture, path).error().kind, ErrorKind::Missing);
    ASSERT_TRUE(writePicture(*picture, path));
    EXPECT_TRUE(compareWithFile(*picture, path)->accepted);
    picture->pixels()[5] = 0xFF102038;
    EXPECT_EQ(compareWithFile(*picture, path)->describe(), "1 pixels differ, by up to 8");
    EXPECT_FALSE(compareWithFile(*picture, path)->accepted);
    EXPECT_TRUE(compareWithFile(*picture, path, {.channel = 8})->accepted);
    EXPECT_TRUE(compareWithFile(*picture, path, {.pixels = 1})->accepted);
    EXPECT_FALSE(compareWithFile(*NSBitmapImageRep::bitmapWithPixels(4, 5), path)->accepted);
    directory.write("kept.png", "no picture");
    EXPECT_EQ(compareWithFile(*picture, path).error().kind, ErrorKind::Corrupt);
}

TEST(ScopedFonts, AreAllThereIs) {
    const std::string sans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    const std::string none = "/usr/share/fonts/none.ttf";
    const ScopedFonts fonts({sans, none});
    ASSERT_FALSE(fonts.outcome());
    EXPECT_EQ(fonts.outcome().error().where, none);
    EXPECT_TRUE(NSFont::fontWithName("DejaVu Sans", 13));
    EXPECT_FALSE(NSFont::fontWithName("DejaVu Serif", 13));
    EXPECT_TRUE(ScopedFonts({sans}).outcome());
    EXPECT_FALSE(ScopedFonts({sans, sans}).outcome());
}

}  // namespace
}  // namespace kx::testing
