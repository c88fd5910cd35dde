#include <algorithm>

#include <gtest/gtest.h>

#include <KXFoundation/AppEnvironment/CloudLocales.h>
#include <KXFoundation/AppEnvironment/KXAppUtils.h>

#include "support/ScopedPlatform.h"

namespace kx {
namespace {

using testing::ScopedPlatform;

TEST(KXAppUtils, IdentityComesFromTheMainBundle) {
    using Text = std::optional<std::string_view>;
    struct {
        Text displayName, identifier;
        std::string_view name, package;
        bool orvik;
    } const rows[] = {
        {"Harbour", "org.example.harbour", "Harbour", "org.example.harbour", false},
        {{}, "org.example.harbour", "org.example.harbour", "org.example.harbour", false},
        {{}, {}, "test-program", "test-program", false},
        {"", "org.example.harbour", "", "org.example.harbour", false},
        {"Orvik", {}, "Orvik", "test-program", true},
        {"orvik", {}, "orvik", "test-program", false},
        {{}, "Orvik", "Orvik", "Orvik", true},
    };
    for (const auto& row : rows) {
        ScopedPlatform platform;
        if (row.displayName) platform.bundle().setInfo("CFBundleDisplayName", *row.displayName);
        if (row.identifier) platform.bundle().setInfo("CFBundleIdentifier", *row.identifier);
        EXPECT_EQ(KXAppUtils::appName(), row.name);
        EXPECT_EQ(KXAppUtils::appPackageName(), row.package);
        EXPECT_EQ(KXAppUtils::isOrvikApp(), row.orvik) << row.name;
    }
}

TEST(KXAppUtils, CurrentLocaleJoinsLanguageAndRegion) {
    ScopedPlatform platform;
    for (const auto& [identifier, want] :
         {std::pair("zh_Hant_TW", "zh_TW"), {"en_US", "en_US"}, {"eo", "eo"}}) {
        platform.locale().setLocale(identifier);
        EXPECT_EQ(KXAppUtils::currentLocale(), want);
    }
}

TEST(KXAppUtils, CloudLocaleOfTheSystemsLanguage) {
    struct {
        std::string tag;
        std::string_view want, orvik;
    } const rows[] = {
        {"en-US", "en_US", "en_US"},      {"en-GB", "en_US", "en_US"},   {"fr", "en_US", "en_US"},
        {"fr-CA", "fr_FR", "fr_FR"},      {"es-MX", "es_MX", "es_MX"},   {"es-419", "es_ES", "es_ES"},
        {"pt-PT", "pt_PT", "pt_PT"},      {"pt-BR", "pt_BR", "pt_BR"},   {"pt-AO", "pt_BR", "pt_BR"},
        {"zh-Hans-CN", "zh_CN", "en_US"}, {"zh-Hans", "zh_CN", "en_US"}, {"zh-CN", "zh_CN", "zh_TW"},
        {"zh-Hant-HK", "zh_TW", "zh_TW"}, {"zh-HK", "zh_TW", "zh_TW"},   {"sr-Latn-RS", "sr_RS", "sr_RS"},
        {"fil-PH", "en_US", "en_US"},     {"EN-US", "en_US", "en_US"},   {"-", "en_US", "en_US"},
        {"ms-", "ms_MY", "ms_MY"},        {"", "en_US", "en_US"},        {"he-IL", "he_IL", "he_IL"},
    };
    for (const auto& row : rows) {
        for (const bool orvik : {false, true}) {
            ScopedPlatform platform;
            platform.bundle().setInfo("CFBundleDisplayName", orvik ? "Orvik" : "Harbour");
            platform.locale().setPreferredLanguages({row.tag, "ja-JP"});
            EXPECT_EQ(KXAppUtils::currentCloudLocale(), orvik ? row.orvik : row.want) << row.tag;
        }
    }
    ScopedPlatform platform;
    platform.locale().setPreferredLanguages({});
    EXPECT_EQ(KXAppUtils::currentCloudLocale(), "en_US");
}

TEST(KXAppUtils, CloudLocaleOfASelectionKey) {
    struct {
        std::string_view key;
        std::optional<std::string_view> want, orvik;
    } const rows[] = {
        {"es_419", "es_MX", "es_MX"},
        {"pt", "pt_PT", "pt_PT"},
        {"pt_BR", "pt_BR", "pt_BR"},
        {"auto", "auto", "auto"},
        {"zh_Hans", "zh_CN", "en_US"},
        {"zh_Hant", "zh_TW", "zh_TW"},
        {"es-419", {}, {}},
        {"ES", {}, {}},
        {"zh_Hans_CN", {}, {}},
        {"", {}, {}},
        {"uk", "uk_UA", "uk_UA"},
        {"ms", "ms_MY", "ms_MY"},
    };
    for (const bool orvik : {false, true}) {
        ScopedPlatform platform;
        platform.bundle().setInfo("CFBundleDisplayName", orvik ? "Orvik" : "Harbour");
        for (const auto& row : rows) {
            EXPECT_EQ(KXAppUtils::getCloudLocaleBySelectedCountryBykey(row.key), orvik ? row.orvik : row.want)
                << row.key;
        }
        EXPECT_EQ(KXAppUtils::getCloudLocaleBySelectedCountryBykey(std::nullopt), std::nullopt);
    }
}

TEST(CloudLocales, EverySelectionLeadsToAListedRegion) {
    for (const auto& row : cloud::kBySelectionKey) {
        if (row.key == "auto") continue;
        EXPECT_EQ(row.locale.substr(0, 2), row.key.substr(0, 2)) << row.key;
        EXPECT_EQ(std::ranges::count(cloud::kLocales, row.locale), 1) << row.key;
        EXPECT_EQ(std::ranges::count(cloud::kBySelectionKey, row.key, &cloud::Row::key), 1) << row.key;
    }
}

}  // namespace
}  // namespace kx
