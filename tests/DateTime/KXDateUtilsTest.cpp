// SPDX-License-Identifier: MIT

#include <thread>
#include <tuple>

#include <gmock/gmock.h>

#include <KXFoundation/DateTime/KXDateUtils.h>
#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Foundation/NSNotificationNames.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/CountedMemory.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

/// The text with plain spaces: which kind stands before a marker changes with the locale data's version.
std::optional<std::string> plain(std::optional<std::string> text) {
    for (const std::string_view space : {"\u202F", "\u00A0"}) {
        const std::size_t at = text ? text->find(space) : std::string::npos;
        if (at != std::string::npos) text->replace(at, space.size(), " ");
    }
    return text;
}

TEST(KXDateUtils, WritesTheTimeOfDayByFlags) {
    const std::tuple<const char*, std::int64_t, const char*, const char*> rows[] = {
        {"en_US", 0, "00:00", "12:00 AM"},
        {"en_US", 719, "11:59", "11:59 AM"},
        {"en_US", 720, "12:00", "12:00 PM"},
        {"en_US", 845, "14:05", "02:05 PM"},
        {"en_US", 1439, "23:59", "11:59 PM"},
        {"en_US", 1440, "00:00", "12:00 AM"},
        {"en_US", -1, "23:59", "11:59 PM"},
        {"en_US", 1'000'000'000'000, "10:40", "10:40 AM"},      // 1.9 million years
        {"en_US", std::int64_t{1} << 62, "00:00", "12:00 AM"},  // wraps around to 0 seconds
        {"zh_CN", 845, "14:05", "下午02:05"},
        {"ko_KR", 845, "14:05", "오후 02:05"},
        {"ja_JP", 0, "00:00", "午前12:00"},  // though the locale itself would write 00
        {"de_DE", 845, "14:05", "02:05 PM"},
        {"es_ES", 845, "14:05", "02:05 p. m."},
        {"ar_EG", 845, "١٤:٠٥", "٠٢:٠٥ م"},
        {"fa_IR", 845, "۱۴:۰۵", "۰۲:۰۵ بعدازظهر"},
        {"bg_BG", 845, "14:05 ч.", "02:05 ч. сл.об."},
    };
    for (const auto& [locale, minutes, withoutMarker, withMarker] : rows) {
        testing::ScopedPlatform platform;
        platform.locale().setLocale(locale);
        const auto dates = KXDateUtils::sharedInstance();
        for (const bool isFirst : {false, true}) {
            EXPECT_EQ(dates->convertMinutesToTimeString(minutes, false, isFirst), withoutMarker) << locale;
            const auto text = plain(dates->convertMinutesToTimeString(minutes, true, isFirst));
            EXPECT_EQ(text, withMarker) << locale << " " << minutes;
        }
    }
}

TEST(KXDateUtils, FollowsTheLocaleAndThenTheSetting) {
    using enum ClockFormat;
    const std::tuple<const char*, ClockFormat, bool, bool, const char*, const char*> rows[] = {
        {"en_US", Unset, true, false, "hh:mma", "02:05 PM"},
        {"en_US", TwentyFourHour, false, false, "HH:mm", "14:05"},
        {"de_DE", Unset, false, false, "HH:mm", "14:05"},
        {"de_DE", TwelveHour, true, false, "hh:mma", "02:05 PM"},
        {"zh_TW", Unset, true, true, "ahh:mm", "下午02:05"},
        {"zh_CN", TwelveHour, true, true, "ahh:mm", "下午02:05"},
        {"ja_JP", TwelveHour, true, true, "ahh:mm", "午後02:05"},
    };
    for (const auto& [locale, setting, hasAMPM, isAMPMFirst, format, text] : rows) {
        testing::ScopedPlatform platform;
        platform.locale().setLocale(locale);
        platform.clockFormat().set(setting);
        const auto dates = KXDateUtils::sharedInstance();
        EXPECT_EQ(KXDateUtils::hasAMPM(), hasAMPM) << locale;
        EXPECT_EQ(dates->isAMPMFirst(), isAMPMFirst) << locale;
        EXPECT_EQ(dates->getTimeFormat(), format) << locale;
        EXPECT_EQ(plain(dates->convertMinutesToTimeString(845)), text) << locale;
        EXPECT_EQ(plain(dates->convertSecondsToTimeString(845 * 60 + 59)), text) << locale;
    }
}

TEST(KXDateUtils, SeesAChangedSettingAtTheNextConversion) {
    testing::ScopedPlatform platform;
    const auto dates = KXDateUtils::sharedInstance();
    EXPECT_EQ(plain(dates->convertMinutesToTimeString(845)), "02:05 PM");
    platform.clockFormat().set(ClockFormat::TwentyFourHour);
    EXPECT_EQ(dates->convertMinutesToTimeString(845), "14:05");
    platform.clockFormat().set(ClockFormat::Unset);
    EXPECT_EQ(plain(dates->convertMinutesToTimeString(845)), "02:05 PM");
    platform.locale().setLocale("de_DE");
    EXPECT_EQ(dates->getTimeFormat(), "HH:mm");
}

/// A formatter of an application's own.
class LoudFormatter : public Subclass<LoudFormatter, NSDateFormatter> {
  public:
    std::optional<std::string> stringFromDate(const std::optional<NSDate>& date) const override {
        return "<" + Super::stringFromDate(date).value_or("") + ">";
    }
    std::string PMSymbol() const override { return "pip"; }
};

TEST(KXDateUtils, UsesTheFormatterThatItIsGiven) {
    testing::ScopedPlatform platform;
    const auto dates = KXDateUtils::sharedInstance();
    auto loud = make<LoudFormatter>();
    loud->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(3600));
    dates->setSingleDateTimeFormatter(loud);
    EXPECT_EQ(dates->convertMinutesToTimeString(845, false, false), "<15:05>");
    EXPECT_EQ(loud->dateFormat(), "HH:mm");
    EXPECT_EQ(dates->PMSymbol(), "pip");
    EXPECT_EQ(dates->AMSymbol(), "AM");
    dates->setSingleDateTimeFormatter(nullptr);
    EXPECT_EQ(dates->convertMinutesToTimeString(845), std::nullopt);
    EXPECT_EQ(dates->convertMinutesToTimeString(845, true, true), std::nullopt);
    EXPECT_EQ(dates->AMSymbol(), std::nullopt);
    dates->appWillEnterForeground();
}

TEST(KXDateUtils, WritesWhatAFormatterWouldAtEveryMinute) {
    for (const char* locale : {"en_US", "zh_TW", "ko_KR", "ja_JP", "de_DE", "es_MX", "pt_PT", "ar_EG",
                               "fa_IR", "bg_BG", "hi_IN", "my_MM", "fi_FI", "th_TH"}) {
        testing::ScopedPlatform platform;
        platform.locale().setLocale(locale);
        const auto dates = KXDateUtils::sharedInstance();
        const auto formatter = make<NSDateFormatter>();
        formatter->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(0));
        for (const auto& [form, hasAMPM, isFirst] :
             {std::tuple("HH:mm", false, false), {"hh:mma", true, false}, {"ahh:mm", true, true}}) {
            formatter->setLocalizedDateFormatFromTemplate(form);
            for (std::int64_t minute = -1500; minute < 1500; ++minute) {
                ASSERT_EQ(dates->convertMinutesToTimeString(minute, hasAMPM, isFirst),
                          formatter->stringFromDate(
                              NSDate::dateWithTimeIntervalSince1970(static_cast<double>(minute * 60))))
                    << locale << " " << form << " " << minute;
            }
        }
    }
}

TEST(KXDateUtils, HandsOutItsFormatterAsTheLastConversionLeftIt) {
    testing::ScopedPlatform platform;
    const auto dates = KXDateUtils::sharedInstance();
    for (int i = 0; i < 2; ++i) (void)dates->convertMinutesToTimeString(845, true, false);
    for (int i = 0; i < 2; ++i) (void)dates->convertMinutesToTimeString(845, false, false);
    const auto formatter = dates->singleDateTimeFormatter();
    EXPECT_EQ(formatter->dateFormat(), "HH:mm");
    formatter->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(3600));
    EXPECT_EQ(plain(dates->convertMinutesToTimeString(845, true, false)), "03:05 PM");
    EXPECT_TRUE(formatter->dateFormat().starts_with("hh:mm"));
    formatter->setLocale(NSLocale::localeWithLocaleIdentifier("zh_CN"));
    EXPECT_EQ(dates->convertMinutesToTimeString(845, true, false), "下午03:05");
}

TEST(KXDateUtils, EachActivationRefreshesAndTellsASecondLater) {
    const auto clock = std::make_shared<testing::ManualClock>();
    const ScopedPort<Clock> clockScope(clock);
    testing::ScopedPlatform platform;
    const auto dates = KXDateUtils::sharedInstance();
    int told = 0;
    auto& centre = NSNotificationCenter::defaultCenter();
    const auto token = centre.addObserverForName(
        KXDateUtilsUpdateTimeNotification, nullptr,
        [&](const NSNotification& notification) { told += notification.object() == nullptr; });
    platform.clockFormat().set(ClockFormat::TwentyFourHour);
    for (const int activation : {1, 2}) {
        centre.postNotificationName(NSApplicationWillBecomeActiveNotification);
        EXPECT_EQ(dates->singleDateTimeFormatter()->dateFormat(), "HH:mm");
        clock->advance(std::chrono::milliseconds(999));
        EXPECT_EQ(told, activation - 1);
        clock->advance(std::chrono::milliseconds(1));
        EXPECT_EQ(told, activation);
    }
}

TEST(KXDateUtils, AllocatesNothingBeyondItsAnswer) {
    const std::pair<const char*, std::size_t> rows[] = {
        {"en_US", 0}, {"de_DE", 0}, {"zh_CN", 0}, {"fa_IR", 1}};  // a string object holds all but the last
    for (const auto& [locale, perText] : rows) {
        testing::ScopedPlatform platform;
        platform.clockFormat().set(ClockFormat::TwelveHour);
        platform.locale().setLocale(locale);
        const auto dates = KXDateUtils::sharedInstance();
        (void)dates->convertMinutesToTimeString(0, false, false);
        (void)dates->convertMinutesToTimeString(0, true, true);
        (void)dates->convertMinutesToTimeString(0, true, false);
        std::optional<std::string> byFlags, bySettings;
        const std::size_t allocations = testing::allocationsOf([&] {
            byFlags = dates->convertMinutesToTimeString(845, true, false);
            bySettings = dates->convertMinutesToTimeString(845);
        });
        EXPECT_EQ(allocations, 2 * perText) << locale;
        EXPECT_EQ(byFlags, bySettings) << locale;
    }
}

TEST(KXDateUtils, ThreadsConvertAsTheyLike) {
    testing::ScopedPlatform platform;
    const auto dates = KXDateUtils::sharedInstance();
    const auto convert = [&](bool hasAMPM, const char* want) {
        int wrong = 0;
        for (int i = 0; i < 2'000; ++i)
            wrong += plain(dates->convertMinutesToTimeString(845, hasAMPM, false)) != want;
        EXPECT_EQ(wrong, 0) << want;
    };
    std::thread other(convert, true, "02:05 PM");
    convert(false, "14:05");
    EXPECT_NE(dates->singleDateTimeFormatter(), nullptr);  // from now on through the formatter
    convert(false, "14:05");
    other.join();
}

}  // namespace
}  // namespace kx
