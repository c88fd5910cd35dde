// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>

namespace kxstrings {

struct Finding {
    std::string file;
    std::size_t line;  ///< counted from 1
    std::string message;

    auto operator<=>(const Finding&) const = default;
};

/// In the order they are shown.
using Findings = std::set<Finding>;

/// The key in quotes, on one line whatever it holds.
[[nodiscard]] inline std::string quoted(std::string_view key) {
    std::string text = "\"";
    for (const char c : key) {
        if (c == '\n') {
            text += "\\n";
        } else {
            text += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
        }
    }
    return text + '"';
}

}  // namespace kxstrings
