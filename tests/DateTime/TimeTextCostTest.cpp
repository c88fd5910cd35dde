#include <gtest/gtest.h>

#include <KXFoundation/DateTime/KXDateUtils.h>

#include "support/CountedAllocations.h"
#include "support/InjectedClockFormat.h"
#include "support/ScopedPlatform.h"

namespace kx {
namespace {

TEST(TimeTextCost, AllocatesNothingBeyondItsAnswer) {
    const std::pair<const char*, std::size_t> rows[] = {
        {"en_US", 0},
        {"de_DE", 0},
        {"zh_CN", 0},
        {"fa_IR", 1},  // longer than what a string object holds itself
    };
    for (const auto& [locale, perText] : rows) {
        testing::ScopedPlatform platform;
        const ScopedPort<ClockFormatSetting> scope(
            std::make_shared<testing::InjectedClockFormat>(ClockFormat::TwelveHour));
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

}  // namespace
}  // namespace kx
