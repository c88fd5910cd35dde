// SPDX-License-Identifier: MIT

#include <thread>
#include <tuple>

#include <gtest/gtest.h>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/LiveLanguage.h>
#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Localization/NSButton_LocalizedKey.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Testing/OffscreenWindow.h>

#include "Localization/ApplicationRun.h"

namespace kx {
namespace {

using testing::ApplicationRun;
using testing::OffscreenWindow;
using enum NSTextAlignment;

struct LiveLanguageTest : ::testing::Test {
    LiveLanguageTest() {
        run.platform.bundle()
            .addStrings("en", {{"hello", "Hello"}, {"name", "Your name"}})
            .addStrings("ar", {{"hello", "مرحبا"}, {"name", "اسمك"}})
            .addStrings("fr", {{"hello", "Bonjour"}, {"name", "Votre nom"}});
        KXLocalizationUtils::setSelectLanguage("en");
    }

    static void showFrame() { EventLoop::main().drain(); }
    static void showIn(std::string_view language) {
        KXLocalizationUtils::setSelectLanguage(language);
        showFrame();
    }

    template <class View>
    std::shared_ptr<View> add(NSRect frame = {0, 0, 80, 20}) {
        auto view = make<View>(frame);
        shown.content().addSubview(view);
        return view;
    }

    ApplicationRun run;
    OffscreenWindow shown{NSSize{200, 100}};
};

TEST_F(LiveLanguageTest, EverythingBoundIsSetInTheFrameAfterASwitch) {
    const auto field = add<NSTextField>();
    const auto view = add<NSTextView>();
    const auto button = add<NSButton>();
    button->setAlignment(Left);
    const auto once = add<NSButton>();
    NSButton_LocalizedKey::setLocalizedKey(once, "hello");
    int calls = 0;
    LiveLanguage::bind(shown.window, "hello");
    LiveLanguage::bind(button, "hello");
    LiveLanguage::bind(field, [&] { return localized("hello") + " " + std::to_string(++calls); });
    LiveLanguage::bindPlaceholder(field, "name");
    LiveLanguage::bind(view, "hello");
    EXPECT_EQ(field->stringValue(), "Hello 1");
    EXPECT_EQ(field->alignment(), Natural);

    KXLocalizationUtils::setSelectLanguage("fr");
    KXLocalizationUtils::setSelectLanguage("ar");
    EXPECT_EQ(button->title(), "Hello") << "before the frame";
    NSApplication::sharedApplication()->displayIfNeeded();
    EXPECT_EQ(field->stringValue(), "مرحبا 2");
    EXPECT_EQ(field->placeholderString(), "اسمك");
    EXPECT_EQ(view->string(), "مرحبا");
    EXPECT_EQ(button->title(), "مرحبا");
    EXPECT_EQ(button->alignment(), Left) << "a button's is mirrored by nobody";
    EXPECT_EQ(shown.window->title(), "مرحبا");
    EXPECT_EQ(field->alignment(), Right);
    EXPECT_EQ(view->alignment(), Right);
    EXPECT_EQ(shown.content().userInterfaceLayoutDirection(), NSUserInterfaceLayoutDirection::RightToLeft);
    EXPECT_EQ(once->title(), "Hello") << "the key properties set once";
    showFrame();
    EXPECT_EQ(calls, 2) << "two switches before a frame are one";
}

TEST_F(LiveLanguageTest, AlignmentsAreThoseOfASetterCalledAnew) {
    const std::pair<NSTextAlignment, NSTextAlignment> rows[] = {
        {Natural, Right}, {Left, Right}, {Right, Left}, {Center, Center}, {Justified, Justified}};
    for (const auto& [asked, inArabic] : rows) {
        const auto field = add<NSTextField>();
        field->setAlignment(asked);
        LiveLanguage::bind(field, "hello");
        for (int round = 0; round < 2; ++round) {
            showIn("ar");
            EXPECT_EQ(field->alignment(), inArabic) << static_cast<int>(asked);
            showIn("fr");
            EXPECT_EQ(field->alignment(), asked) << static_cast<int>(asked);
        }
    }
    showIn("ar");
    const auto made = add<NSTextField>();  // in Arabic, and aligned anew while it is bound
    LiveLanguage::bind(made, "hello");
    made->setAlignment(Right);
    showIn("en");
    EXPECT_EQ(made->alignment(), Right);
}

TEST_F(LiveLanguageTest, ConstraintsOfABoundControlChangeSidesAndFollowItsText) {
    const auto label = add<NSTextField>();
    label->setEditable(false);
    label->setTranslatesAutoresizingMaskIntoConstraints(false);
    LiveLanguage::bind(label, [] { return std::string(KXLocalizationUtils::isRTL() ? "wide text" : "w"); });
    NSLayoutConstraint::activateConstraints({NSLayoutConstraint::constraintWithItem(
        label, NSLayoutAttribute::Leading, shown.window->contentView(), NSLayoutAttribute::Leading, 10)});
    showFrame();
    const NSRect before = label->frame();
    EXPECT_EQ(before.origin.x, 10);
    KXLocalizationUtils::setSelectLanguage("ar");
    std::ignore = shown.picture();
    EXPECT_EQ(label->frame().maxX(), 190);
    EXPECT_GT(label->frame().size.width, before.size.width);
}

TEST_F(LiveLanguageTest, EveryRoadToAnotherLanguageIsSeen) {
    const auto button = add<NSButton>();
    LiveLanguage::bind(button, "hello");
    const std::tuple<const char*, std::function<void()>, const char*> rows[] = {
        {"the system's language, while it is followed",
         [&] {
             KXLocalizationUtils::setSelectLanguage("auto");
             run.platform.locale().setPreferredLanguages({"fr-CA"});
         },
         "Bonjour"},
        {"it changes again", [&] { run.platform.locale().setPreferredLanguages({"ar"}); }, "مرحبا"},
        {"another thread", [] { std::thread([] { LiveLanguage::select("en"); }).join(); }, "Hello"},
        {"another thread, while this one looks nothing up",
         [] { std::thread([] { KXLocalizationUtils::setSelectLanguage("ar"); }).join(); }, "مرحبا"},
        {"no selection any more", [] { LiveLanguage::select(std::nullopt); }, "Hello"},
    };
    for (const auto& [how, change, text] : rows) {
        change();
        for (int turn = 0; turn < 3; ++turn)
            showFrame();  // the block of select(), what it announces, a frame
        EXPECT_EQ(button->title(), text) << how;
    }
}

TEST_F(LiveLanguageTest, ABindingEndsWithItsControlOrTheNextOne) {
    const auto held = std::make_shared<int>();
    int calls = 0;
    const auto counted = [held, &calls] { return std::to_string(++calls); };
    auto button = add<NSButton>();
    LiveLanguage::bind(button, counted);
    LiveLanguage::bind(button, "hello");
    showIn("fr");
    EXPECT_EQ(button->title(), "Bonjour");
    EXPECT_EQ(calls, 1) << "when it was bound";
    LiveLanguage::unbind(button);
    showIn("en");
    EXPECT_EQ(button->title(), "Bonjour");

    LiveLanguage::follow(button, [counted](NSButton& each) { each.setTitle(counted()); });
    LiveLanguage::refresh(button);
    EXPECT_EQ(button->title(), "3");
    button->removeFromSuperview();
    button = nullptr;
    EXPECT_EQ(held.use_count(), 2) << "this one and that of `counted`";
    showIn("ar");
    EXPECT_EQ(calls, 3);
}

TEST_F(LiveLanguageTest, TheAuditTellsWhatNoSwitchWillChange) {
    const auto window = shown.window;
    window->setTitle("Harbour");
    const auto label = add<NSTextField>({0, 0, 80, 20});
    label->setEditable(false);
    label->setStringValue("Berth");
    label->setIdentifier("berth");
    const auto field = add<NSTextField>({0, 30, 80, 20});
    field->setStringValue("what somebody typed");
    field->setPlaceholderString("Your name");
    const auto box = add<NSView>({0, 60, 80, 40});
    const auto button = make<NSButton>(NSRect(0, 0, 80, 20));
    button->setTitle("Save");
    button->setHidden(true);
    box->addSubview(button);
    const auto empty = add<NSTextView>();

    const auto lines = [&] {
        std::vector<std::string> all;
        for (const auto& each : LiveLanguage::unbound(window)) all.push_back(each.describe());
        return all;
    };
    EXPECT_EQ(lines(),
              (std::vector<std::string>{
                  "title \"Harbour\" in " + window->description(),
                  R"("Berth" in <NSView 0,0 200x100> <NSTextField 0,0 80x20> #berth)",
                  R"(placeholder "Your name" in <NSView 0,0 200x100> <NSTextField 0,30 80x20>)",
                  R"("Save" in <NSView 0,0 200x100> <NSView 0,60 80x40> <NSButton 0,0 80x20 hidden>)",
              }));
    LiveLanguage::bind(window, "hello");
    LiveLanguage::bind(label, "hello");
    LiveLanguage::bindPlaceholder(field, "name");
    EXPECT_EQ(lines().size(), 1);
    LiveLanguage::exempt(box);
    EXPECT_TRUE(lines().empty());
    LiveLanguage::unbind(label);
    EXPECT_EQ(lines().size(), 1);
    EXPECT_TRUE(LiveLanguage::unbound(nullptr).empty());
}

}  // namespace
}  // namespace kx
