// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ManualClock.h>

#include "Localization/ApplicationRun.h"

namespace kx {
namespace {

using testing::ApplicationRun;
using Utils = KXLocalizationUtils;

struct StoredChoice {
    std::optional<std::string> language, mode;
    bool operator==(const StoredChoice&) const = default;
};

StoredChoice storedChoice() {
    const NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    return {defaults.stringForKey("kSelectLanguage"), defaults.stringForKey("kSelectLog")};
}

/// What a look-up and isRTL do first.
void reload() {
    (void)Utils::isRTL();
}

constexpr std::string_view kPlainLanguages[] = {"en", "cs", "bg", "de", "da", "el", "es", "fi", "fr",
                                                "it", "ko", "nb", "nl", "pl", "pt", "ro", "ru", "sk",
                                                "sv", "tr", "vi", "th", "ja", "uk", "ar", "hu", "sr"};

TEST(LanguageSelection, AutoResolvesTheFirstSystemLanguage) {
    const std::tuple<std::string_view, std::string_view, std::string_view> rows[] = {
        {"zh-Hans-CN", "zh-Hans", "en"}, {"zh-Hans", "zh-Hans", "en"}, {"pt-BR", "pt-BR", "pt-BR"},
        {"pt-BR-x", "pt", "pt"},         {"pt-PT", "pt", "pt"},        {"es-419", "es", "es"},
        {"sr-Latn-RS", "sr", "sr"},      {"fil-PH", "fi", "fi"},       {"he-IL", "en", "en"},
        {"zh-HK", "en", "en"},           {"EN-GB", "en", "en"}};
    const auto expect = [](std::string_view tag, std::string_view name, std::string_view want) {
        const ApplicationRun run({std::string(tag), "fr-FR"}, name);
        EXPECT_EQ(Utils::setSelectLanguage("auto"), want) << tag << " in " << name;
        EXPECT_EQ(storedChoice(), (StoredChoice{std::string(want), "FollowSystem"})) << tag;
    };
    for (const auto& [tag, want, orvik] : rows) {
        expect(tag, "Harbour", want);
        expect(tag, "Orvik", orvik);
    }
    for (const auto* name : {"Harbour", "Orvik"}) expect("zh-Hant-TW", name, "zh-Hant");
    for (const std::string_view language : kPlainLanguages) {
        expect(language, "Harbour", language);
        expect(std::string(language) + "-AT", "Harbour", language);
    }
    const ApplicationRun nothingPreferred(std::vector<std::string>{});
    EXPECT_EQ(Utils::setSelectLanguage("auto"), "en");
}

TEST(LanguageSelection, FixedChoices) {
    const std::tuple<std::string_view, std::string_view, std::string_view> rows[] = {
        {"zh_Hant", "zh-Hant", "zh-Hant"},    {"pt_BR", "pt-BR", "pt-BR"},    {"fr", "fr", "fr"},
        {"zh_Hant_TW", "zh-Hant", "zh-Hant"}, {"zh_Hans", "zh-Hans", "en"},   {"Auto", "Auto", "Auto"},
        {"zh_Hans_CN", "zh-Hans", "en"},      {"es_419", "es-419", "es-419"}, {"", "", ""},
        {"zh-Hans", "zh-Hans", "zh-Hans"},    {"none", "none", "none"}};
    for (const auto& [choice, plain, ofOrvik] : rows) {
        for (const bool orvik : {false, true}) {
            const ApplicationRun run({"de-DE"}, orvik ? "Orvik" : "orvik");
            const std::string want(orvik ? ofOrvik : plain);
            EXPECT_EQ(Utils::setSelectLanguage(choice), want) << choice;
            EXPECT_EQ(Utils::selectLanguage(), want) << choice;
            EXPECT_EQ(storedChoice(), (StoredChoice{want, "notFollowSystem"})) << choice;
        }
    }
}

TEST(LanguageSelection, AbsentTakesTheChoiceBack) {
    ApplicationRun run({"de-DE"});
    run.localizedIn({"de", "fr"});
    Utils::setSelectLanguage("fr");
    EXPECT_TRUE(selectLanguageBundle);
    EXPECT_EQ(Utils::setSelectLanguage(std::nullopt), std::nullopt);
    EXPECT_EQ(storedChoice(), (StoredChoice{std::nullopt, "notFollowSystem"}));
    EXPECT_FALSE(selectLanguage || selectLanguageBundle);
    EXPECT_EQ(Utils::selectLanguage(), "de") << "the system's";
}

TEST(LanguageSelection, TheChoiceSurvivesARestartAndIsSeenByTheFirstReload) {
    ApplicationRun run({"de-DE"});
    run.localizedIn({"de", "fr"});
    Utils::setSelectLanguage("fr");
    run.restart();
    EXPECT_EQ(Utils::selectLanguage(), "de") << "before the first reload the system's";
    reload();
    EXPECT_EQ(Utils::selectLanguage(), "fr");
    EXPECT_EQ(selectLog, "notFollowSystem");
}

TEST(LanguageSelection, FollowingTheSystemResolvesAgainWithEveryReload) {
    ApplicationRun run({"fr-FR"});
    run.localizedIn({"fr", "ja"});
    Utils::setSelectLanguage("auto");
    run.platform.locale().setPreferredLanguages({"ja-JP"});
    EXPECT_EQ(Utils::selectLanguage(), "fr") << "not before a reload";
    reload();
    EXPECT_EQ(Utils::selectLanguage(), "ja");
    EXPECT_EQ(storedChoice(), (StoredChoice{"ja", "FollowSystem"}));
    EXPECT_TRUE(selectLanguageBundle->bundlePath().ends_with("/ja.lproj"));
}

TEST(LanguageSelection, FollowingTheSystemIsWrittenAgainWhereItCouldNotBe) {
    const auto files = std::make_shared<testing::FaultyFileSystem>();
    const auto clock = std::make_shared<testing::ManualClock>();
    const ScopedPort<FileSystem> fileScope(files);
    const ScopedPort<Clock> clockScope(clock);
    ApplicationRun run({"fr-FR"});
    files->setRoom(0);
    Utils::setSelectLanguage("auto");
    reload();
    files->heal();
    files->resetCounts();
    reload();
    EXPECT_EQ(files->calls(), 0u) << "not with every look-up";
    clock->advance(std::chrono::seconds(5));
    reload();
    run.restart();
    EXPECT_EQ(storedChoice(), (StoredChoice{"fr", "FollowSystem"}));
}

TEST(LanguageSelection, AReloadOverwritesWhatTheApplicationWrote) {
    ApplicationRun run({"fr-FR"});
    run.localizedIn({"fr"});
    Utils::setSelectLanguage("auto");
    reload();
    const auto frenchPath = selectLanguageBundle->bundlePath();
    const std::function<void()> writes[] = {
        [] { selectLanguage = "de"; },
        [] { selectLanguage.reset(); },
        [] { selectLog = "notFollowSystem"; },
        [] { selectLanguageBundle = NSBundle::mainBundle(); },
        [] { NSUserDefaults::standardUserDefaults().setObject("kSelectLanguage", "de"); },
        [] { NSUserDefaults::standardUserDefaults().setObject("kSelectLanguage", 5); },
    };
    for (const auto& write : writes) {
        reload();
        write();
        reload();
        const auto which = &write - writes;
        EXPECT_EQ(selectLanguage, "fr") << "write " << which;
        EXPECT_EQ(selectLog, "FollowSystem") << "write " << which;
        EXPECT_EQ(selectLanguageBundle->bundlePath(), frenchPath) << "write " << which;
        EXPECT_EQ(storedChoice(), (StoredChoice{"fr", "FollowSystem"})) << "write " << which;
    }
}

TEST(LanguageSelection, AChoiceTakesThePlaceOfAnotherProcesssWhole) {
    const ApplicationRun run({"en-US"});
    Utils::setSelectLanguage("fr");
    const auto other = make<NSUserDefaults>(*NSBundle::mainBundle()->bundleIdentifier());
    other->setObjects({{kSelectLanguage, "en"}, {kSelectLog, kFollowSystem}});
    ASSERT_TRUE(other->synchronize());
    Utils::setSelectLanguage("de");
    reload();
    EXPECT_EQ(selectLanguage, "de");
    EXPECT_EQ(storedChoice(), (StoredChoice{"de", "notFollowSystem"}));
}

TEST(LanguageSelection, StoredValuesOfAnotherTypeCountAsMissing) {
    const ApplicationRun run;
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    defaults.setObject("kSelectLanguage", ArrayBuilder().add("fr").build());
    defaults.setObject("kSelectLog", 1);
    reload();
    EXPECT_FALSE(selectLanguage || selectLog);
}

TEST(SystemLanguage, OnlyTheFirstPreferenceIsExamined) {
    using Texts = std::vector<std::string>;
    const std::tuple<Texts, std::vector<std::string_view>, std::string_view, std::string_view> rows[] = {
        {{"de-AT", "fr-FR"}, {"en", "fr"}, "en-US", "en"},
        {{"de-AT"}, {"en", "de"}, "de", "de"},
        {{"de-AT"}, {"en", "de", "de-AT"}, "de-AT", "de-AT"},
        {{"de-AT"}, {"en", "en-US"}, "en-US", "en-US"},
        {{"en"}, {"en"}, "en", "en"},
        {{"de"}, {"de-DE"}, "en-US", "en"},
        {{"pt-BR"}, {"pt", "pt-BR"}, "pt-BR", "pt-BR"},
        {{"pt-BR"}, {"pt"}, "en-US", "en"},
        {{"pt-AO"}, {"pt", "pt-BR"}, "pt", "pt"},
        {{"fil-PH"}, {"fi"}, "en-US", "en"},
        {{"zh-Hant-HK"}, {"zh-Hant"}, "zh-Hant", "zh-Hant"},
        {{}, {"fr"}, "fr", "fr"},
    };
    for (const auto& [preferred, localizations, want, preferredLanguage] : rows) {
        ApplicationRun run(preferred);
        run.platform.locale().setLocale("fr_CA");  // asked only where nothing is preferred
        run.localizedIn(localizations);
        SCOPED_TRACE(::testing::PrintToString(preferred));
        EXPECT_EQ(Utils::currentUseLanguage(), want);
        EXPECT_EQ(Utils::currentPreferredLanguage(), preferredLanguage);
        EXPECT_EQ(Utils::isCurrentUseLanguageSupported(), want == preferredLanguage);
    }
    for (const std::string_view language : kPlainLanguages) {
        ApplicationRun run({std::string(language) + "-AT"});
        run.localizedIn({language});
        EXPECT_EQ(Utils::currentUseLanguage(), language);
    }
}

TEST(SystemLanguage, OrvikReadsSimplifiedChineseAsEnglish) {
    const std::tuple<std::string_view, std::string_view, std::string_view> rows[] = {
        {"Orvik", "zh-Hans-CN", "en"}, {"Orvik", "zh-Hans", "zh-Hans"}, {"Harbour", "zh-Hans-CN", "zh-Hans"}};
    for (const auto& [name, tag, want] : rows) {
        ApplicationRun run({std::string(tag)}, name);
        run.localizedIn({"en", "zh-Hans"});
        EXPECT_EQ(Utils::currentUseLanguage(), want) << tag << " in " << name;
    }
}

TEST(SystemLanguage, IsComputedOnceInAProcess) {
    ApplicationRun run({"de-AT"});
    run.localizedIn({"Base", "de", "fr"});
    EXPECT_EQ(Utils::supportLanguages(), (LanguageSet{"Base", "de", "fr"}));
    EXPECT_EQ(Utils::currentUseLanguage(), "de");
    run.platform.locale().setPreferredLanguages({"fr-FR"});
    EXPECT_EQ(Utils::currentUseLanguage(), "de");
    run.restart();
    EXPECT_EQ(Utils::currentUseLanguage(), "fr");
}

TEST(RightToLeft, SelectionFirstThenTheSystem) {
    const std::tuple<std::optional<std::string_view>, std::string, bool, bool> rows[] = {
        {"ar", "en-US", true, false},        {"en", "ar-EG", false, true},
        {std::nullopt, "ar-EG", true, true}, {std::nullopt, "en-US", false, false},
        {"he", "en-US", false, false},       {"", "ar-EG", true, true},
        {"auto", "ar-EG", true, true},       {"ar-EG", "en-US", false, false},
    };
    for (const auto& [selected, system, rtl, systemRTL] : rows) {
        ApplicationRun run({system});
        run.localizedIn({"ar", "en"});
        if (selected) Utils::setSelectLanguage(selected);
        EXPECT_EQ(Utils::isRTL(), rtl) << selected.value_or("(none)") << ", " << system;
        EXPECT_EQ(Utils::isSystemRTL(), systemRTL) << selected.value_or("(none)") << ", " << system;
    }
}

TEST(RightToLeft, TheSetIsTheApplicationsToChange) {
    const ApplicationRun run;
    EXPECT_EQ(Utils::rtlLanguageSet(), LanguageSet{"ar"});
    Utils::setSelectLanguage("he");
    rtlLanguageSet->insert("he");
    EXPECT_TRUE(Utils::isRTL());
    selectLanguage = "";
    lCurrentUseLanguage = "";
    NSUserDefaults::standardUserDefaults().removeObjectForKey("kSelectLanguage");
    EXPECT_TRUE(Utils::isRTL()) << "with nothing to judge the last answer stays";
}

}  // namespace
}  // namespace kx
