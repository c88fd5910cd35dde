// SPDX-License-Identifier: MIT

#include <array>
#include <charconv>
#include <cmath>

#include <KXFoundation/AppEnvironment/KXAppUtils.h>

namespace kx {

namespace {
constexpr std::array<char, 4> kUnits = {'B', 'K', 'M', 'G'};
}

std::string KXAppUtils::getSpaceStringFromByteValue(std::int64_t bytes) {
    if (bytes == 0) return "0.0G";
    const auto count = static_cast<double>(bytes);
    std::size_t unit = 0;
    double size = 1;  // of the unit
    while (unit + 1 < kUnits.size() && size * 1024 <= count) size *= 1024, ++unit;
    const double value = std::floor(count / size * 10) / 10;  // cut, not rounded
    std::array<char, 32> text;
    char* const end =
        std::to_chars(text.data(), text.data() + text.size() - 1, value, std::chars_format::fixed, 1).ptr;
    *end = kUnits[unit];
    return {text.data(), end + 1};
}

}  // namespace kx
