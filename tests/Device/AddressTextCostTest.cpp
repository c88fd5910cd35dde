#include <functional>

#include <gtest/gtest.h>

#include <KXFoundation/Device/KXNetworkUtils.h>
#include <KXFoundation/Platform/Services/IPv4Address.h>

#include "support/CountedAllocations.h"

namespace kx {
namespace {

using testing::allocationsOf;

TEST(AddressTextCost, NothingIsAllocatedBeyondTheAnswer) {
    const std::string hugeMac(20'000, ':');
    std::string hugeNumber(20'000, '9');
    hugeNumber += ".1.2.3";
    const std::string separator(40, '-');
    struct {
        const char* name;
        std::function<void()> work;
        std::size_t want;
    } const rows[] = {
        {"MAC to number", [] { (void)KXNetworkUtils::macStringToInteger("00:11:22:AA:BB:CC"); }, 0},
        {"huge MAC to number", [&] { (void)KXNetworkUtils::macStringToInteger(hugeMac); }, 0},
        {"IPv4 to number", [] { (void)KXNetworkUtils::ipStringToInteger("192.168.1.1"); }, 0},
        {"huge IPv4 to number", [&] { (void)KXNetworkUtils::ipStringToInteger(hugeNumber); }, 0},
        {"MAC to MAC", [] { (void)KXNetworkUtils::formatMac("a:b:c:d:e:f"); }, 1},
        {"short MAC", [] { (void)KXNetworkUtils::formatMACAddress("a:b:c:d:e:f", ""); }, 0},
        {"huge MAC to MAC", [&] { (void)KXNetworkUtils::formatMac(hugeMac); }, 1},
        {"number to MAC", [&] { (void)KXNetworkUtils::formatMACInteger(-1, separator); }, 1},
        {"IPv4 to text",
         [] {
             (void)IPv4Address{{255, 255, 255, 255}}.text();
         },
         0},
    };
    for (const auto& row : rows) EXPECT_EQ(allocationsOf(row.work), row.want) << row.name;
}

TEST(AddressTextCost, ABlankFieldIsPassedOnlyOnce) {
    // Quadratic work over a million blanks would not end within the test's time.
    const std::string blanks(1'000'000, ' ');
    EXPECT_EQ(KXNetworkUtils::formatMACAddress(blanks + ".", "").size(), 2'000'002U);
}

}  // namespace
}  // namespace kx
