// SPDX-License-Identifier: MIT

#include <limits>
#include <set>

#include <gtest/gtest.h>

#include <KXFoundation/AppEnvironment/AppLinks.h>
#include <KXFoundation/AppEnvironment/FeedbackCodes.h>
#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

using testing::ScopedPlatform;

TEST(AppLinks, ArePlaceholdersUnlessTheBuildSaysOtherwise) {
    ScopedPlatform platform;
    const AppLinks links = appLinks();
    for (const std::string& place :
         {links.feedbackAddress, links.orvikFeedbackAddress, links.storeHost, links.lookupHost})
        EXPECT_NE(place.find(".invalid"), std::string::npos) << place;
}

TEST(FeedbackLinks, CodesOfTheSelectedLanguage) {
    const std::tuple<const char*, const char*, const char*, const char*, const char*> rows[] = {
        {"en", "en_US", "en", "en_US", "en"},      {"es-419", "ex_MX", "latam", "ex_MX", "latam"},
        {"ja", "jp_JP", "jp", "jp_JP", "jp"},      {"da", "en_US", "en", "en_US", "en"},
        {"zh-Hans", "zh_TW", "tw", "en_US", "en"}, {"zh-Hant", "zh_TW", "tw", "zh_TW", "tw"},
        {"ru", "ru_RU", "ru", "ru_RU", "en"},      {"uk", "uk_UA", "uk-ua", "uk_UA", "uk-ua"},
        {"sk", "en_US", "cz", "en_US", "cz"},      {"EN", "en_US", "en", "en_US", "en"},
        {"pt-BR", "pt_BR", "br", "pt_BR", "br"},
    };
    for (const bool isOrvik : {false, true}) {
        ScopedPlatform platform;
        platform.bundle().setInfo("CFBundleDisplayName", isOrvik ? "Orvik" : "Harbour");
        setAppLinks({.feedbackAddress = "https://a.example/f",
                     .orvikFeedbackAddress = "https://b.example/g",
                     .productIdentifier = "anchor"});
        for (const auto& [selected, plainPage, plainTool, orvikPage, orvikTool] : rows) {
            KXLocalizationUtils::setSelectLanguage(selected);
            const std::string page = isOrvik ? orvikPage : plainPage;
            EXPECT_EQ(KXAppUtils::getFeedbackLanguageCode(), page) << selected;
            EXPECT_EQ(KXAppUtils::getORLOToolLanguageCode(), isOrvik ? orvikTool : plainTool) << selected;
            EXPECT_EQ(KXAppUtils::getFeedbackUrl(), isOrvik ? "https://b.example/g?app=anchor&darkmode=1"
                                                            : "https://a.example/f?locale=" + page);
        }
    }
}

TEST(FeedbackCodes, EveryLanguageStandsOnce) {
    std::set<std::string_view> languages;
    for (const feedback::Row& row : feedback::kCodes)
        EXPECT_TRUE(languages.insert(row.language).second) << row.language;
    EXPECT_EQ(languages.size(), 25U);
}

TEST(StoreLinks, AddressesGoToTheDesktop) {
    ScopedPlatform platform;
    setAppLinks({.storeHost = "store.example"});
    KXAppUtils::jumpToAppStoreUserReviews("4711");
    KXAppUtils::jumpToAppStoreDetailViews("4711");
    KXAppUtils::jumpToAppStoreDetailViews("1&mt=9 é");
    KXAppUtils::jumpToAppStoreDetailViews(std::string_view("1\0", 2));  // no address can hold that
    for (const std::optional<std::string_view> text :
         {std::optional<std::string_view>(), {""}, {"a b"}, {"\xFF"}})
        KXAppUtils::openURLString(text);
    KXAppUtils::openURL(std::nullopt);
    KXAppUtils::openURLString("mailto:a@example.org");
    EXPECT_EQ(platform.workspace().opened(),
              (std::vector<std::string>{
                  "itms-apps://store.example/WebObjects/MZStore.woa/wa/viewContentsUserReviews"
                  "?id=4711&pageNumber=0&sortOrdering=2&type=Purple+Software&mt=8",
                  "itms-apps://store.example/app/id4711",
                  "itms-apps://store.example/app/id1%26mt%3D9%20%C3%A9", "mailto:a@example.org"}));
}

TEST(TimeText, IsEnglishInTheSystemsZone) {
    const std::tuple<const char*, std::int64_t, std::optional<std::string_view>, std::string_view> rows[] = {
        {"Asia/Tokyo", 0, "yyyy", "1970"},
        {"America/New_York", 0, "yyyy", "1969"},
        {"Asia/Tokyo", 1'700'000'000, "EEEE d MMMM yyyy h:mm a", "Wednesday 15 November 2023 7:13 AM"},
        {"Asia/Tokyo", 0, std::nullopt, ""},
        {"Asia/Tokyo", std::numeric_limits<std::int64_t>::max(), "yyyy", ""},
    };
    for (const auto& [zoneName, seconds, format, want] : rows) {
        testing::ScopedPlatform platform;
        platform.setTimeZone(zoneName);
        platform.locale().setLocale("fa_IR");
        EXPECT_EQ(KXAppUtils::getTime(seconds, format), want) << zoneName << " " << seconds;
    }
}

TEST(SizeText, CutsToOneDigitOfTheLargestUnit) {
    const std::pair<std::int64_t, const char*> rows[] = {
        {0, "0.0G"},         {1, "1.0B"},           {1023, "1023.0B"}, {1024, "1.0K"},
        {1500, "1.4K"},      {1048575, "1023.9K"},  {1 << 20, "1.0M"}, {1 << 30, "1.0G"},
        {-1500, "-1500.0B"}, {1LL << 40, "1024.0G"}};
    for (const auto& [bytes, want] : rows) EXPECT_EQ(KXAppUtils::getSpaceStringFromByteValue(bytes), want);
    EXPECT_EQ(KXAppUtils::getSpaceStringFromByteValue(INT64_MAX), "8589934592.0G");
    EXPECT_EQ(KXAppUtils::getSpaceStringFromByteValue(INT64_MIN), "-9223372036854775808.0B");
}

TEST(AppVersion, ComesFromTheMainBundle) {
    ScopedPlatform platform;
    EXPECT_EQ(KXAppUtils::currentAppVersion(), std::nullopt);
    platform.restart();
    platform.bundle().setInfo("CFBundleShortVersionString", "2.10").setInfo("CFBundleVersion", "");
    EXPECT_EQ(KXAppUtils::currentAppVersion(), "2.10");
    EXPECT_EQ(KXAppUtils::currentAppVersionCode(), "");
}

}  // namespace
}  // namespace kx
