// SPDX-License-Identifier: MIT

#include <cmath>

#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <KXFoundation/Platform/Foundation/NSDateFormatter.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

using namespace std::string_literals;

std::shared_ptr<NSDateFormatter> formatterFor(const char* locale, const char* zone) {
    auto formatter = make<NSDateFormatter>();
    formatter->setLocale(NSLocale::localeWithLocaleIdentifier(locale));
    formatter->setTimeZone(NSTimeZone::timeZoneWithName(zone));
    return formatter;
}

/// ICU's own text, from local wall time as if it were UTC.
class Icu {
  public:
    Icu(const char* pattern, const char* locale)
        : format_(icu::UnicodeString::fromUTF8(pattern), icu::Locale(locale), status_) {
        std::unique_ptr<icu::Calendar> calendar(format_.getCalendar()->clone());
        auto* const gregorian = dynamic_cast<icu::GregorianCalendar*>(calendar.get());
        if (gregorian) gregorian->setGregorianChange(-1.8e17, status_);
        format_.adoptCalendar(calendar.release());
        format_.adoptTimeZone(icu::TimeZone::getGMT()->clone());
    }
    std::string text(double wallSeconds) const {
        icu::UnicodeString wide;
        std::string bytes;
        return format_.format(wallSeconds * 1000, wide).toUTF8String(bytes);
    }

  private:
    UErrorCode status_ = U_ZERO_ERROR;
    icu::SimpleDateFormat format_;
};

TEST(NSDateFormatter, WritesWhatIcuWrites) {
    const testing::ScopedPlatform platform;
    const std::pair<const char*, const char*> rows[] = {
        {"en_US", "yyyy-MM-dd HH:mm:ss"}, {"en_US", "h:mm a"},        {"en_US", "y/M/d k 'o''clock' ''"},
        {"en_US", "yy KK:m:s"},           {"ja_JP", "aKK:mm"},        {"ar_EG", "yyyy/MM/dd hh:mm a"},
        {"fa_IR", "HH:mm:ss a"},          {"fa_IR", "yyyy-MM-dd"},    {"th_TH", "d MMMM y"},
        {"de_DE", "EEEE, d. MMMM y"},     {"zh_CN", "y年M月d日 EEE"}, {"en_US", "ss.SSS"},
    };
    const auto utc = NSTimeZone::timeZoneWithName("UTC");
    for (const auto& [locale, pattern] : rows) {
        const auto formatter = formatterFor(locale, "Australia/Lord_Howe");
        formatter->setDateFormat(pattern);
        const Icu icu(pattern, locale);
        // Some 25 years and a bit at a time through the years 1 to 9999.
        for (double seconds = -62'135'500'000; seconds < 253'402'200'000; seconds += 812'345'678) {
            const auto date = NSDate::dateWithTimeIntervalSince1970(seconds);
            const double wall =
                seconds + static_cast<double>(formatter->timeZone()->secondsFromGMTForDate(date));
            ASSERT_EQ(formatter->stringFromDate(date), icu.text(wall))
                << locale << " " << pattern << " " << seconds;
        }
    }
}

TEST(NSDateFormatter, ReadsWhatItWrites) {
    const testing::ScopedPlatform platform;
    for (const char* pattern : {"yyyy-MM-dd HH:mm:ss", "hh:mm:ss a, d/M/y", "yyyyMMddHHmmss",
                                "d MMMM y HH:mm:ss", "y-MM-dd'T'HH:mm:ssXXX"}) {
        for (const char* locale : {"en_US", "ar_EG", "de_DE"}) {
            const auto formatter = formatterFor(locale, "America/New_York");
            formatter->setDateFormat(pattern);
            for (double seconds = -2'000'000'000; seconds < 4'000'000'000; seconds += 23'456'789) {
                const auto date = NSDate::dateWithTimeIntervalSince1970(seconds);
                const auto text = formatter->stringFromDate(date);
                ASSERT_EQ(formatter->dateFromString(text), date) << locale << " " << *text;
            }
        }
    }
}

TEST(NSDateFormatter, ReadsNoDateFromNothing) {
    const testing::ScopedPlatform platform;
    for (const char* locale : {"en_US", "th_TH", "fa_IR"}) {
        const auto formatter = formatterFor(locale, "UTC");
        for (const char* pattern : {"yyyyMMdd", "HHmm", "y-MM-dd", "EEEE"}) {
            formatter->setDateFormat(pattern);
            EXPECT_EQ(formatter->dateFromString(""), std::nullopt) << locale << " " << pattern;
        }
    }
}

TEST(NSDateFormatter, NamesTheZone) {
    const testing::ScopedPlatform platform;
    const std::tuple<const char*, double, const char*, const char*> rows[] = {
        {"America/New_York", 1'721'000'000, "HH:mm z, zzzz", "19:33 EDT, Eastern Daylight Time"},
        {"Europe/Berlin", 1'705'000'000, "HH:mm VV, VVV, vvvv",
         "20:06 Europe/Berlin, Berlin, Central European Time"},
        {"Asia/Almaty", 1'721'000'000, "HH:mm z", "04:33 GMT+5"},  // of old rules it would be 6 hours
    };
    for (const auto& [zone, seconds, pattern, want] : rows) {
        const auto formatter = formatterFor("en_US", zone);
        formatter->setDateFormat(pattern);
        EXPECT_EQ(formatter->stringFromDate(NSDate::dateWithTimeIntervalSince1970(seconds)), want);
    }
}

TEST(NSDateFormatter, FindsTheLocalesPattern) {
    testing::ScopedPlatform platform;
    const auto german = NSLocale::localeWithLocaleIdentifier("de_DE");
    platform.locale().setLocale("de_DE");
    const auto pattern = [](std::optional<std::string_view> t, const std::shared_ptr<NSLocale>& locale) {
        return NSDateFormatter::dateFormatFromTemplate(t, 0, locale);
    };
    EXPECT_EQ(pattern("j", german), "HH 'Uhr'");
    EXPECT_EQ(pattern("j", nullptr), "HH 'Uhr'");
    platform.clockFormat().set(ClockFormat::TwelveHour);
    EXPECT_EQ(pattern("j", german), "HH 'Uhr'") << "a named locale knows no setting of the user";
    EXPECT_EQ(pattern("j", nullptr), "h 'Uhr' a");
    EXPECT_TRUE(pattern("mma:hh", german)->starts_with("hh:mm"));
    EXPECT_EQ(pattern("", german), "");
    EXPECT_EQ(pattern(std::nullopt, german), std::nullopt);
    EXPECT_EQ(pattern(std::string(200, 'H'), german), std::nullopt);
    EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate("j", 1, german), std::nullopt);
}

TEST(NSDateFormatter, BearsBadInput) {
    const testing::ScopedPlatform platform;
    const auto formatter = formatterFor("en_US", "UTC");
    const auto date = NSDate::dateWithTimeIntervalSince1970(0);
    const std::pair<std::optional<std::string>, std::optional<std::string>> rows[] = {
        {std::nullopt, ""}, {"HH'open", "00open"}, {"HH\0mm"s, "00\0"s + "00"},
        {"", ""},           {"\xFF", "\uFFFD"},    {std::string(100'000, '.'), std::string(100'000, '.')},
        {"'", ""},          {"C", std::nullopt}};
    for (const auto& [pattern, want] : rows) {
        formatter->setDateFormat(pattern);
        EXPECT_EQ(formatter->stringFromDate(date), want) << pattern.value_or("absent").substr(0, 20);
    }
    for (const char* pattern : {"HH:mm", "EEEE"}) {
        formatter->setDateFormat(pattern);
        for (const double seconds : {double(NAN), HUGE_VAL, -HUGE_VAL, 1e300})
            EXPECT_EQ(formatter->stringFromDate(NSDate::dateWithTimeIntervalSince1970(seconds)),
                      std::nullopt);
        EXPECT_EQ(formatter->stringFromDate(std::nullopt), std::nullopt);
        EXPECT_EQ(formatter->dateFromString(std::string(100'000, '1')), std::nullopt);
        EXPECT_EQ(formatter->dateFromString("\xFF\xFE"), std::nullopt);
    }
    formatter->setLocale(NSLocale::localeWithLocaleIdentifier(std::string(10'000, 'x')));
    formatter->setDateFormat("HH:mm");
    EXPECT_EQ(formatter->stringFromDate(date), "00:00");
}

}  // namespace
}  // namespace kx
