#include <gtest/gtest.h>

#include <KXFoundation/AppEnvironment/KXAppUtils.h>

#include "support/CountedAllocations.h"

namespace kx {
namespace {

TEST(AppVersion, ComparesNumbersByValueAndAllocatesNothing) {
    using Text = std::optional<std::string_view>;
    const std::string longNumber(10'000, '9');
    struct {
        Text a, b;
        bool isOlder, isNewer;
    } const rows[] = {
        {"1.9", "1.10", true, false},
        {"1.99", "2.0", true, false},
        {"1.0", "1.0.0", true, false},
        {"1.0", "1.0", false, false},
        {"1.01", "1.1", false, false},
        {"1.0", "1.00", false, false},
        {"1.", "1.0", true, false},
        {"", "0", true, false},
        {"1a", "10", true, false},
        {"1.a", "1.0", false, true},
        {"1.0-beta2", "1.0-beta10", true, false},
        {"1.Z", "1.a", true, false},
        {"99999999999999999999998", "99999999999999999999999", true, false},
        {std::string_view(longNumber).substr(1), longNumber, true, false},
        {"1.z", "1.é", true, false},
        {{}, "1.0", false, false},
        {{}, {}, false, false},
    };
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
