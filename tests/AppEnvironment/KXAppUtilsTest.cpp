// SPDX-License-Identifier: MIT

#include <algorithm>

#include <gtest/gtest.h>

#include <KXFoundation/AppEnvironment/CloudLocales.h>
#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Testing/CountedMemory.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

using testing::ScopedPlatform;

TEST(KXAppUtils, IdentityComesFromTheMainBundle) {
    using Text = std::optional<std::string_view>;
    const std::tuple<Text, Text, std::string_view, std::string_view, bool> rows[] = {
        {"Harbour", "org.example.harbour", "Harbour", "org.example.harbour", false},
        {{}, "org.example.harbour", "org.example.harbour", "org.example.harbour", false},
        {{}, {}, "test-program", "test-program", false},
        {"", "org.example.harbour", "", "org.example.harbour", false},
        {"Orvik", {}, "Orvik", "test-program", true},
        {"orvik", {}, "orvik", "test-program", false},
        {{}, "Orvik", "Orvik", "Orvik", true},
    };
    for (const auto& [displayName, identifier, name, package, orvik] : rows) {
        ScopedPlatform platform;
        if (displayName) platform.bundle().setInfo("CFBundleDisplayName", *displayName);
        if (identifier) platform.bundle().setInfo("CFBundleIdentifier", *identifier);
        EXPECT_EQ(KXAppUtils::appName(), name);
        EXPECT_EQ(KXAppUtils::appPackageName(), package);
        EXPECT_EQ(KXAppUtils::isOrvikApp(), orvik) << name;
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
    const std::tuple<std::string, std::string_view, std::string_view> rows[] = {
        {"en-US", "en_US", "en_US"},      {"en-GB", "en_US", "en_US"},   {"fr", "en_US", "en_US"},
        {"fr-CA", "fr_FR", "fr_FR"},      {"es-MX", "es_MX", "es_MX"},   {"es-419", "es_ES", "es_ES"},
        {"pt-PT", "pt_PT", "pt_PT"},      {"pt-BR", "pt_BR", "pt_BR"},   {"pt-AO", "pt_BR", "pt_BR"},
        {"zh-Hans-CN", "zh_CN", "en_US"}, {"zh-Hans", "zh_CN", "en_US"}, {"zh-CN", "zh_CN", "zh_TW"},
        {"zh-Hant-HK", "zh_TW", "zh_TW"}, {"zh-HK", "zh_TW", "zh_TW"},   {"sr-Latn-RS", "sr_RS", "sr_RS"},
        {"fil-PH", "en_US", "en_US"},     {"EN-US", "en_US", "en_US"},   {"-", "en_US", "en_US"},
        {"ms-", "ms_MY", "ms_MY"},        {"", "en_US", "en_US"},        {"he-IL", "he_IL", "he_IL"},
    };
    for (const auto& [tag, want, ofOrvik] : rows) {
        for (const bool orvik : {false, true}) {
            ScopedPlatform platform;
            platform.bundle().setInfo("CFBundleDisplayName", orvik ? "Orvik" : "Harbour");
            platform.locale().setPreferredLanguages({tag, "ja-JP"});
            EXPECT_EQ(KXAppUtils::currentCloudLocale(), orvik ? ofOrvik : want) << tag;
        }
    }
    ScopedPlatform platform;
    platform.locale().setPreferredLanguages({});
    EXPECT_EQ(KXAppUtils::currentCloudLocale(), "en_US");
}

TEST(KXAppUtils, CloudLocaleOfASelectionKey) {
    using Text = std::optional<std::string_view>;
    const std::tuple<std::string_view, Text, Text> rows[] = {
        {"es-419", {}, {}},     {"pt", "pt_PT", "pt_PT"}, {"es_419", "es_MX", "es_MX"},
        {"ES", {}, {}},         {"auto", "auto", "auto"}, {"pt_BR", "pt_BR", "pt_BR"},
        {"zh_Hans_CN", {}, {}}, {"uk", "uk_UA", "uk_UA"}, {"zh_Hans", "zh_CN", "en_US"},
        {"", {}, {}},           {"ms", "ms_MY", "ms_MY"}, {"zh_Hant", "zh_TW", "zh_TW"}};
    for (const bool orvik : {false, true}) {
        ScopedPlatform platform;
        platform.bundle().setInfo("CFBundleDisplayName", orvik ? "Orvik" : "Harbour");
        for (const auto& [key, want, ofOrvik] : rows)
            EXPECT_EQ(KXAppUtils::getCloudLocaleBySelectedCountryBykey(key), orvik ? ofOrvik : want) << key;
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

TEST(AppVersion, ComparesNumbersByValueAndAllocatesNothing) {
    using Text = std::optional<std::string_view>;
    const std::string longNumber(10'000, '9');
    struct {
        Text a, b;
        bool isOlder, isNewer;
    } const rows[] = {
        {"1.", "1.0", true, false},    {"1.9", "1.10", true, false},
        {"1.99", "2.0", true, false},  {"1.0", "1.00", false, false},
        {"", "0", true, false},        {"1.a", "1.0", false, true},
        {"1.0", "1.0.0", true, false}, {"1.0-beta2", "1.0-beta10", true, false},
        {"1a", "10", true, false},     {"1.Z", "1.a", true, false},
        {"1.0", "1.0", false, false},  {"99999999999999999999998", "99999999999999999999999", true, false},
        {{}, "1.0", false, false},     {"1.z", "1.é", true, false},
        {"1.01", "1.1", false, false}, {std::string_view(longNumber).substr(1), longNumber, true, false},
        {{}, {}, false, false}};
    for (const auto& row : rows) {
        const std::size_t allocations = testing::allocationsOf([&] {
            EXPECT_EQ(KXAppUtils::isAppVersionOlderThan(row.a, row.b), row.isOlder);
            EXPECT_EQ(KXAppUtils::isAppVersionOlderThan(row.b, row.a), row.isNewer);
        });
        EXPECT_EQ(allocations, 0U) << row.a.value_or("absent").substr(0, 40) << " and "
                                   << row.b.value_or("absent").substr(0, 40);
    }
}

}  // namespace
}  // namespace kx
