// SPDX-License-Identifier: MIT

#include <algorithm>
#include <sstream>

#include <gmock/gmock.h>
#include <unicode/uloc.h>

#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Testing/FakeEnvironment.h>
#include <KXFoundation/Testing/InjectedLocale.h>

namespace kx {
namespace {

using namespace std::string_literals;

TEST(NSLocale, MakesTagsOfPosixNames) {
    const std::pair<const char*, const char*> rows[] = {
        {"pt_BR", "pt-BR"}, {"zh_CN", "zh-Hans-CN"},  {"zh_TW.UTF-8", "zh-Hant-TW"},
        {"PT_br", "pt-BR"}, {"zh_HK", "zh-Hant-HK"},  {"zh_SG.gb18030", "zh-Hans-SG"},
        {"fr", "fr"},       {"zh", "zh-Hans-CN"},     {"zh-hant-hk", "zh-Hant-HK"},
        {"sr_RS", "sr-RS"}, {"zh_Hant", "zh-Hant"},   {"yue_HK", "yue-Hant-HK"},
        {"no_NO", "nb-NO"}, {"cmn_TW", "zh-Hant-TW"}, {"sr_RS@latin", "sr-Latn-RS"},
        {"nn_NO", "nn-NO"}, {"de_DE@euro", "de-DE"},  {"sr_RS.UTF-8@cyrillic", "sr-Cyrl-RS"},
        {"iw_IL", "he-IL"}, {"es_419", "es-419"},     {"uz_UZ@cyrillic", "uz-Cyrl-UZ"},
        {"in_ID", "id-ID"}, {"sh_BA", "sr-Latn-BA"},  {"ca_ES@valencia", "ca-ES-valencia"},
        {"tl_PH", "fil-PH"}};
    for (const auto& [name, tag] : rows) EXPECT_EQ(languageTagForPosixName(name), tag) << name;
    for (const std::string& name :
         {"C"s, "C.UTF-8"s, "POSIX"s, ""s, "_DE"s, "de_DEUTSCH"s, "de_DE_x"s, "../../etc"s, "de_DE.../../x"s,
          "de_DE@a/b"s, "de DE"s, "de\0DE"s, "d\xC3\xA9_DE"s, "de_DE." + std::string(1000, 'x')})
        EXPECT_EQ(languageTagForPosixName(name), std::nullopt) << name;
}

TEST(NSLocale, WritesChineseInTheLikelyScript) {
    for (const std::string language : {"zh", "yue"}) {
        std::vector<std::string> names{language, language + "_419"};
        for (auto region = uloc_getISOCountries(); *region; ++region)
            names.push_back(language + '_' + *region);
        for (const std::string& name : names) {
            char likely[ULOC_FULLNAME_CAPACITY];
            UErrorCode status = U_ZERO_ERROR;
            uloc_addLikelySubtags(name.c_str(), likely, sizeof likely, &status);
            std::string tag = likely;
            std::ranges::replace(tag, '_', '-');
            EXPECT_EQ(languageTagForPosixName(name), tag);
        }
    }
}

TEST(NSLocale, ReadsTheUsersVariables) {
    // Variables as "NAME=value" with a bar between them, preferred languages, identifier.
    const std::tuple<std::string, std::vector<std::string>, std::string> rows[] = {
        {"", {}, "en_US"},
        {"LANG=C", {}, "en_US"},
        {"LANG=C.UTF-8", {}, "en_US"},
        {"LANG=zh_TW.UTF-8", {"zh-Hant-TW"}, "zh_TW"},
        {"LC_ALL=de_AT|LC_MESSAGES=fr_FR|LANG=it_IT", {"de-AT"}, "de_AT"},
        {"LC_MESSAGES=fr_FR|LC_TIME=en_GB|LANG=it_IT", {"fr-FR"}, "en_GB"},
        {"LANGUAGE=pt_BR:pt:en|LANG=de_DE", {"pt-BR", "pt", "en", "de-DE"}, "de_DE"},
        {"LANGUAGE=de_DE::fr:de_DE.UTF-8:fr|LANG=fr", {"de-DE", "fr"}, "fr_FR"},
        // The locale's region, once.
        {"LANGUAGE=de:en|LANG=de_AT", {"de-AT", "en"}, "de_AT"},
        {"LANGUAGE=pt_BR:pt:en|LANG=pt_BR", {"pt-BR", "pt", "en"}, "pt_BR"},
        {"LANGUAGE=sr:sr@latin|LANG=sr_RS@latin", {"sr", "sr-Latn-RS"}, "sr_Latn_RS"},
        {"LANGUAGE=zh:en|LANG=zh_TW", {"zh-Hant-TW", "en"}, "zh_TW"},
        // Not asked in a plain locale.
        {"LANGUAGE=fr|LANG=C", {}, "en_US"},
        {"LANGUAGE=fr|LC_ALL=POSIX|LANG=de_DE", {}, "en_US"},
        {"LANGUAGE=../x:a b:fr:C.UTF-8:" + std::string(100, 'd') + "|LANG=de_DE", {"fr", "de-DE"}, "de_DE"},
        // The program's own language ends the list.
        {"LANGUAGE=C:fr|LANG=de_DE", {"en"}, "de_DE"},
        {"LANGUAGE=fr:POSIX:it|LANG=de_DE", {"fr", "en"}, "de_DE"},
        {"LANGUAGE=fr" + std::string(1 << 20, ':') + "|LANG=de_DE", {"de-DE"}, "de_DE"},
        // The likely region, where there is one.
        {"LANG=nl", {"nl"}, "nl_NL"},
        {"LANG=eo", {"eo"}, "eo"},
        {"LANG=sr_RS@latin", {"sr-Latn-RS"}, "sr_Latn_RS"},
        {"LANG=no_NO", {"nb-NO"}, "nb_NO"},
    };
    for (const auto& [variables, languages, identifier] : rows) {
        SCOPED_TRACE(variables.substr(0, 200));
        const auto environment = std::make_shared<testing::FakeEnvironment>();
        std::istringstream each(variables);
        for (std::string name, value; std::getline(each, name, '=') && std::getline(each, value, '|');)
            environment->set(name, value);
        const ScopedPort<Environment> scope(environment);
        const auto settings = LocaleSettings::makeDefault();
        EXPECT_EQ(settings->preferredLanguages(), languages);
        EXPECT_EQ(settings->localeIdentifier(), identifier);
    }
}

TEST(NSLocale, TakesIdentifiersApart) {
    const std::tuple<const char*, std::optional<std::string>, std::optional<std::string>> rows[] = {
        {"en_US", "en", "US"},          {"zh-Hant-TW", "zh", "TW"},
        {"es_419", "es", "419"},        {"fil_PH", "fil", "PH"},
        {"eo", "eo", std::nullopt},     {"zh_Hans", "zh", std::nullopt},
        {"ca_ES_valencia", "ca", "ES"}, {"", std::nullopt, std::nullopt},
        {"_US", std::nullopt, "US"},    {"123", std::nullopt, std::nullopt},
    };
    for (const auto& [identifier, language, country] : rows) {
        const auto locale = make<NSLocale>(identifier);
        EXPECT_EQ(locale->languageCode(), language) << identifier;
        EXPECT_EQ(locale->countryCode(), country) << identifier;
    }
}

TEST(NSLocale, FollowsChangesOfTheSettings) {
    const auto settings = std::make_shared<testing::InjectedLocale>();
    const ScopedPort<LocaleSettings> scope(settings);
    auto version = NSLocale::settingsVersion();
    const auto changed = [&] { return std::exchange(version, NSLocale::settingsVersion()) != version; };
    EXPECT_FALSE(changed());
    settings->setPreferredLanguages({"fr-FR"});
    EXPECT_TRUE(changed());
    EXPECT_THAT(NSLocale::preferredLanguages(), ::testing::ElementsAre("fr-FR"));
    settings->setLocale("fr_CA");
    EXPECT_TRUE(changed());
    EXPECT_EQ(NSLocale::currentLocale()->countryCode(), "CA");
    const ScopedPort<LocaleSettings> other(std::make_shared<testing::InjectedLocale>());
    EXPECT_TRUE(changed());
}

}  // namespace
}  // namespace kx
