#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include <KXFoundation/DateTime/KXDateUtils.h>

#include "support/InjectedClockFormat.h"
#include "support/ScopedPlatform.h"

namespace {
thread_local std::size_t allocations = 0;
}

// Libraries ask for memory this way too; what deletes it is below.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size ? size : 1);
}
void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace kx {
namespace {

TEST(TimeTextCost, AllocatesNothingBeyondItsAnswer) {
    const struct {
        const char* locale;
        std::size_t perText;
    } rows[] = {
        {"en_US", 0},
        {"de_DE", 0},
        {"zh_CN", 0},
        {"fa_IR", 1},  // longer than what a string object holds itself
    };
    for (const auto& row : rows) {
        testing::ScopedPlatform platform;
        const ScopedPort<ClockFormatSetting> scope(
            std::make_shared<testing::InjectedClockFormat>(ClockFormat::TwelveHour));
        platform.locale().setLocale(row.locale);
        const auto dates = KXDateUtils::sharedInstance();
        (void)dates->convertMinutesToTimeString(0, false, false);
        (void)dates->convertMinutesToTimeString(0, true, true);
        (void)dates->convertMinutesToTimeString(0, true, false);
        const std::size_t before = allocations;
        const auto byFlags = dates->convertMinutesToTimeString(845, true, false);
        const auto bySettings = dates->convertMinutesToTimeString(845);
        EXPECT_EQ(allocations - before, 2 * row.perText) << row.locale;
        EXPECT_EQ(byFlags, bySettings) << row.locale;
    }
}

}  // namespace
}  // namespace kx
