// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Testing/CountedMemory.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>

#include "Localization/ApplicationRun.h"

namespace kx {
namespace {

using testing::ApplicationRun;
using Utils = KXLocalizationUtils;

void addTexts(testing::BundleFolder& bundle) {
    bundle.addStrings("en", {{"pier", "Pier"}, {"tide", "Tide"}, {"same", "Same in English"}})
        .addStrings("fr", {{"pier", "Jetée"}, {"same", "same"}})
        .addStrings("de", {{"pier", "Anleger"}})
        .addStrings("fr", {{"pier", "Embarcadère"}}, "Signs");
}

TEST(StringLookup, SelectedLanguageThenEnglishThenTheKey) {
    using Text = std::optional<std::string_view>;
    const std::tuple<Text, std::string_view, Text, std::string_view> rows[] = {
        {"fr", "tide", {}, "Tide"}, {"fr", "pier", {}, "Jetée"},   {"fr", "same", {}, "Same in English"},
        {"fr", "mole", {}, "mole"}, {"ja", "pier", {}, "Pier"},    {"fr", "pier", "Signs", "Embarcadère"},
        {"fr", "", {}, ""},         {"../fr", "pier", {}, "Pier"}, {"fr", "tide", "Signs", "tide"},
        {{}, "tide", {}, "Tide"},   {{}, "pier", {}, "Anleger"},   {"auto", "pier", {}, "Anleger"}};
    for (const auto& [selected, key, table, want] : rows) {
        ApplicationRun run({"de-AT"});
        addTexts(run.platform.bundle());
        if (selected) Utils::setSelectLanguage(selected);
        EXPECT_EQ(Utils::localizedStringForKey(key, table), want)
            << selected.value_or("(none)") << ": " << key;
    }
}

TEST(StringLookup, WithoutEnglishAMissingKeyIsAbsentAndShownItself) {
    ApplicationRun run({"fr-FR"});
    run.platform.bundle().addStrings("fr", {{"pier", "Jetée"}});
    Utils::setSelectLanguage("fr");
    EXPECT_EQ(Utils::localizedStringForKey("pier"), "Jetée");
    EXPECT_EQ(Utils::localizedStringForKey("tide"), std::nullopt);
    EXPECT_EQ(localized("tide"), "tide");
}

TEST(StringLookup, FollowsAChangeOfTheSystemsLanguage) {
    ApplicationRun run({"fr-FR"});
    addTexts(run.platform.bundle());
    Utils::setSelectLanguage("auto");
    EXPECT_EQ(Utils::localizedStringForKey("pier"), "Jetée");
    run.platform.locale().setPreferredLanguages({"de-DE"});
    EXPECT_EQ(Utils::localizedStringForKey("pier"), "Anleger");
    run.platform.locale().setPreferredLanguages({"ja-JP"});
    EXPECT_EQ(Utils::localizedStringForKey("pier"), "Pier") << "no such folder";
}

TEST(StringLookup, TakesTheVariablesThatItReplacesAsArguments) {
    ApplicationRun run({"fr-FR"});
    run.platform.bundle()
        .addStrings("fr", {{"fr", "Français"}, {"de", "Allemand"}})
        .addStrings("de", {{"fr", "Französisch"}, {"de", "Deutsch"}})
        .addStrings("en", {{"de", "German"}});
    Utils::setSelectLanguage("auto");
    EXPECT_EQ(Utils::localizedStringForKey(*selectLanguage), "Français");
    run.platform.locale().setPreferredLanguages({"de-DE"});
    EXPECT_EQ(Utils::localizedStringForKey(*selectLanguage), "Französisch");
    run.platform.locale().setPreferredLanguages({"ja-JP"});
    EXPECT_EQ(Utils::localizedStringInBundle(selectLanguageBundle, "de"), std::nullopt) << "not the main one";
}

TEST(StringLookup, AnExplicitBundleLeavesTheKeptOnesAlone) {
    ApplicationRun run({"de-AT"});
    addTexts(run.platform.bundle());
    testing::BundleFolder other(run.platform.directory().makeDirectory("plug-in"));
    other.addStrings("fr", {{"pier", "Quai"}}).addStrings("en", {{"mole", "Mole"}});
    const auto bundle = make<NSBundle>(other.path());
    Utils::setSelectLanguage("fr");
    const auto selectedBundle = selectLanguageBundle;
    EXPECT_EQ(Utils::localizedStringInBundle(bundle, "pier"), "Quai");
    EXPECT_EQ(Utils::localizedStringInBundle(bundle, "mole"), "Mole");
    EXPECT_EQ(Utils::localizedStringInBundle(bundle, "tide"), "tide") << "the main bundle is not asked";
    EXPECT_EQ(selectLanguageBundle, selectedBundle);
    EXPECT_FALSE(defaultLanguageBundle || currentLanguageBundle);
    EXPECT_EQ(Utils::localizedStringForKey("pier"), "Jetée");
    EXPECT_EQ(Utils::localizedStringInBundle(nullptr, "pier"), "Jetée");
}

TEST(StringLookup, TheCurrentBundleStaysOnItsFirstLanguage) {
    ApplicationRun run({"de-AT"});
    addTexts(run.platform.bundle());
    EXPECT_EQ(Utils::localizedStringForKey("pier"), "Anleger");
    lCurrentUseLanguage = "fr";
    EXPECT_EQ(Utils::localizedStringForKey("pier"), "Anleger");
}

/// The cost of one look-up of the key once everything is warm.
struct Cost {
    std::size_t fileCalls, allocations;
    bool operator==(const Cost&) const = default;
};

Cost costOf(testing::FaultyFileSystem& files, std::string_view key) {
    for (int i = 0; i < 3; ++i) (void)KXLocalizationUtils::localizedStringForKey(key);
    const std::size_t callsBefore = files.calls();
    const std::size_t allocations =
        testing::allocationsOf([&] { (void)KXLocalizationUtils::localizedStringForKey(key); });
    return {files.calls() - callsBefore, allocations};
}

TEST(LookupCost, AWarmLookupThatFollowsTheSystemCostsItsAnswer) {
    const std::string longText(100, 'x');
    const std::tuple<std::string_view, std::string_view, std::size_t> rows[] = {
        {"fr-FR", "short", 0},   {"fr-FR", "long", 1},  // the answer does not fit into a string object
        {"fr-FR", "english", 1},                        // found in the fallback
        {"ja-JP", "english", 1},                        // the selected language has no folder
        {"fr-FR", "missing", 0},
    };
    for (const auto& [systemLanguage, key, wantAllocations] : rows) {
        const auto files = std::make_shared<testing::FaultyFileSystem>();
        const ScopedPort<FileSystem> scope(files);
        ApplicationRun run({std::string(systemLanguage)});
        run.platform.bundle()
            .addStrings("fr", {{"short", "court"}, {"long", longText}})
            .addStrings("en", {{"english", longText}});
        KXLocalizationUtils::setSelectLanguage("auto");
        EXPECT_GT(files->calls(), 0U) << "the flush was not counted: this test would see nothing";
        const Cost cost = costOf(*files, key);
        EXPECT_EQ(cost.fileCalls, 0U) << systemLanguage << ": " << key;
        EXPECT_EQ(cost.allocations, wantAllocations) << systemLanguage << ": " << key;
    }
}

}  // namespace
}  // namespace kx
