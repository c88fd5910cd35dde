// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Foundation/NumericCompare.h>

namespace kx {

namespace {

bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

/// Takes the run of digits that the text begins with off it; the run without leading zeros.
std::string_view takeNumber(std::string_view& text) noexcept {
    const auto end = static_cast<std::size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
    std::string_view run = text.substr(0, end);
    text.remove_prefix(end);
    run.remove_prefix(std::min(run.find_first_not_of('0'), run.size()));
    return run;
}

/// Numbers of any length: of two without leading zeros the longer one is the larger.
std::strong_ordering compareNumbers(std::string_view a, std::string_view b) noexcept {
    return a.size() != b.size() ? a.size() <=> b.size() : a <=> b;
}

}  // namespace

std::strong_ordering numericCompare(std::string_view a, std::string_view b) noexcept {
    while (!a.empty() && !b.empty()) {
        if (isDigit(a.front()) && isDigit(b.front())) {
            const std::string_view numberA = takeNumber(a);
            const auto order = compareNumbers(numberA, takeNumber(b));
            if (order != 0) return order;
            continue;
        }
        const auto order = static_cast<unsigned char>(a.front()) <=> static_cast<unsigned char>(b.front());
        if (order != 0) return order;  // UTF-8 keeps the order of code points
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return a.size() <=> b.size();
}

}  // namespace kx
