// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/NSButton_LocalizedKey.h>
#include <KXFoundation/Localization/NSButton_RTL.h>
#include <KXFoundation/Localization/NSCollectionViewFlowLayout_RTL.h>
#include <KXFoundation/Localization/NSImageView_RTL.h>
#include <KXFoundation/Localization/NSTextField_LocalizedKey.h>
#include <KXFoundation/Localization/NSTextField_RTL.h>
#include <KXFoundation/Localization/NSTextView_LocalizedKey.h>
#include <KXFoundation/Localization/NSTextView_RTL.h>
#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Runtime/OperationExchange.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>
#include <KXFoundation/Platform/Views/NSImageView.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>

#include "Localization/ApplicationRun.h"

namespace kx {
namespace {

using testing::ApplicationRun;
using enum NSTextAlignment;

constexpr NSRect kFrame{0, 0, 100, 20};

/// An application's own classes, as deep as they come.
class HarbourField : public Subclass<HarbourField, NSTextField> {
  public:
    using NSTextField::init;
};
class NoticeView : public Subclass<NoticeView, NSTextView> {};
class UITextFieldLabelView : public Subclass<UITextFieldLabelView, NSTextView> {};

ApplicationRun& inLanguage(ApplicationRun& run, std::string_view language) {
    KXLocalizationUtils::setSelectLanguage(language);
    return run;
}

template <class Control>
void expectMirroring(std::string_view language, NSTextAlignment made,
                     std::initializer_list<std::pair<NSTextAlignment, NSTextAlignment>> rows) {
    ApplicationRun run;
    inLanguage(run, language);
    const auto control = make<Control>(kFrame);
    EXPECT_EQ(control->alignment(), made) << control->className() << " made in " << language;
    EXPECT_EQ(control->frame(), kFrame);
    for (const auto& [asked, applied] : rows) {
        control->setAlignment(asked);
        EXPECT_EQ(control->alignment(), applied)
            << control->className() << " in " << language << ": " << static_cast<int>(asked);
    }
}

template <class Control>
void expectMirroringInArabicOnly() {
    expectMirroring<Control>(
        "ar", Right,
        {{Left, Right}, {Natural, Right}, {Right, Left}, {Center, Center}, {Justified, Justified}});
    for (const auto* language : {"en", "he"})
        expectMirroring<Control>(
            language, Natural,
            {{Left, Left}, {Natural, Natural}, {Right, Right}, {Center, Center}, {Justified, Justified}});
}

TEST(Mirroring, AlignmentsOfTextControls) {
    expectMirroringInArabicOnly<NSTextField>();
    expectMirroringInArabicOnly<HarbourField>();
    expectMirroringInArabicOnly<NSTextView>();
    expectMirroringInArabicOnly<NoticeView>();
    expectMirroring<UITextFieldLabelView>("ar", Natural, {{Left, Left}, {Right, Right}});
}

template <class Control>
NSTextAlignment archivedAndReadIn(std::string_view language, NSTextAlignment archived) {
    ApplicationRun run;
    inLanguage(run, "en");
    const auto original = make<Control>(kFrame);
    original->setAlignment(archived);
    NSCoder archive;
    original->encodeWithCoder(archive);
    inLanguage(run, language);
    NSCoder reader(archive.archive());
    return make<Control>(reader)->alignment();
}

TEST(Mirroring, AlignmentsFromAnArchive) {
    for (const auto& [language, archived, want] : {std::tuple("ar", Left, Right),
                                                   {"ar", Right, Left},
                                                   {"ar", Natural, Right},
                                                   {"ar", Center, Center},
                                                   {"en", Left, Left}}) {
        EXPECT_EQ(archivedAndReadIn<NSTextField>(language, archived), want) << language;
        EXPECT_EQ(archivedAndReadIn<NSTextView>(language, archived), want) << language;
    }
}

TEST(Mirroring, ExistingControlsKeepTheirAlignment) {
    ApplicationRun run;
    inLanguage(run, "ar");
    const auto field = make<NSTextField>(kFrame);
    inLanguage(run, "en");
    EXPECT_EQ(field->alignment(), Right);
    inLanguage(run, "ar");
    field->setAlignment(field->alignment());
    EXPECT_EQ(field->alignment(), Left) << "every set is mirrored";
}

TEST(Mirroring, TheOtherEndReachesThePlatform) {
    ApplicationRun run;
    inLanguage(run, "ar");
    const auto field = make<NSTextField>(kFrame);
    NSTextField_RTL::rtl_setTextAlignment(field, Left);
    EXPECT_EQ(field->alignment(), Left);
    NSTextField_RTL::rtl_setTextAlignment(nullptr, Left);
    const auto view = make<NSTextView>(kFrame);
    NSTextView_RTL::rtl_setTextAlignment(view, Left);
    EXPECT_EQ(view->alignment(), Left);
    EXPECT_EQ(NSTextView_RTL::rtl_initWithFrame(nullptr, kFrame), nullptr);
}

TEST(Mirroring, ExchangingAgainTakesAnInterceptionAway) {
    ApplicationRun run;
    inLanguage(run, "ar");
    const auto exchange = [] {
        InstanceMethodSwizzling(HarbourField::classObject(), "setAlignment:", "rtl_setTextAlignment:");
    };
    exchange();
    const auto own = make<HarbourField>(kFrame);
    own->setAlignment(Left);
    EXPECT_EQ(own->alignment(), Left) << "the application's class is as the platform made it";
    const auto plain = make<NSTextField>(kFrame);
    plain->setAlignment(Left);
    EXPECT_EQ(plain->alignment(), Right) << "its base is untouched";
    exchange();
    own->setAlignment(Left);
    EXPECT_EQ(own->alignment(), Right);
}

TEST(Mirroring, ButtonInsets) {
    const std::tuple<std::string_view, NSEdgeInsets, NSEdgeInsets> rows[] = {
        {"ar", {1, 4, 2, 10}, {1, 10, 2, 4}},
        {"ar", {1, 6, 2, 6}, {1, 6, 2, 6}},
        {"en", {1, 4, 2, 10}, {1, 4, 2, 10}}};
    for (const auto& [language, asked, applied] : rows) {
        ApplicationRun run;
        inLanguage(run, language);
        const auto button = make<NSButton>(kFrame);
        NSButton_RTL::rtl_setImageEdgeInsets(button, asked);
        EXPECT_EQ(NSButton_RTL::imageEdgeInsets(button), applied) << language;
        EXPECT_EQ(NSButton_RTL::titleEdgeInsets(button), NSEdgeInsets());
        NSButton_RTL::rtl_setTitleEdgeInsets(button, asked);
        NSButton_RTL::rtl_setContentEdgeInsets(button, applied);
        EXPECT_EQ(NSButton_RTL::titleEdgeInsets(button), applied) << language;
        EXPECT_EQ(NSButton_RTL::contentEdgeInsets(button), asked) << language;
    }
    NSButton_RTL::rtl_setImageEdgeInsets(nullptr, {1, 2, 3, 4});
    EXPECT_EQ(NSButton_RTL::imageEdgeInsets(nullptr), NSEdgeInsets());
}

TEST(Mirroring, FlowLayoutsFollowTheLanguage) {
    ApplicationRun run;
    const auto layout = make<NSCollectionViewFlowLayout>();
    for (const auto* language : {"ar", "en"}) {
        inLanguage(run, language);
        EXPECT_EQ(layout->flipsHorizontallyInOppositeLayoutDirection(), language == std::string_view("ar"));
        EXPECT_EQ(NSCollectionViewFlowLayout_RTL::flipsHorizontallyInOppositeLayoutDirection(layout),
                  language == std::string_view("ar"));
    }
}

TEST(Bindings, AKeySetsTheTextOnce) {
    ApplicationRun run;
    run.platform.bundle().addStrings("fr", {{"pier", "Jetée"}}).addStrings("en", {{"pier", "Pier"}});
    const auto button = make<NSButton>(kFrame);
    const auto field = make<NSTextField>(kFrame);
    const auto view = make<NSTextView>(kFrame);
    const auto bindAll = [&](std::optional<std::string_view> key) {
        NSButton_LocalizedKey::setLocalizedKey(button, key);
        NSTextField_LocalizedKey::setLocalizedPlaceHolder(field, key);
        NSTextView_LocalizedKey::setLocalizedKey(view, key);
    };
    const auto expectAll = [&](std::string_view text, std::string_view when) {
        EXPECT_EQ(button->title(), text) << when;
        EXPECT_EQ(field->placeholderString(), text) << when;
        EXPECT_EQ(view->string(), text) << when;
    };
    inLanguage(run, "fr");
    bindAll("pier");
    expectAll("Jetée", "set");
    bindAll("");
    bindAll(std::nullopt);
    inLanguage(run, "en");
    expectAll("Jetée", "after an empty key, an absent key and another language");
    bindAll("tide");
    expectAll("tide", "a key that no table has");
    EXPECT_FALSE(NSButton_LocalizedKey::localizedKey(button) ||
                 NSTextField_LocalizedKey::localizedPlaceHolder(field) ||
                 NSTextView_LocalizedKey::localizedKey(view));
    NSButton_LocalizedKey::setLocalizedKey(nullptr, "pier");
}

TEST(Bindings, AnImageNameWithoutAPictureShowsNothing) {
    const ApplicationRun run;
    const auto view = make<NSImageView>(kFrame);
    NSImageView_RTL::setImageName(view, "no such picture");
    EXPECT_EQ(view->image(), nullptr);
    EXPECT_EQ(NSImageView_RTL::imageName(view), std::nullopt);
    NSImageView_RTL::setImageName(nullptr, "pier");
}

}  // namespace
}  // namespace kx
