// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace kxstrings {

/// What a text takes from whoever fills it in, each in a form that is the same for all spellings of one
/// argument: "%2$d" for `%i` in the second place or `%2$05x`, "{name}" for `{name:>8}`.
struct FormatArguments {
    std::set<std::string> names;
    bool mixed = false;  ///< some have a number and some have none, of which nothing good comes

    bool operator==(const FormatArguments&) const = default;
};

/// Reads the arguments in printf's form, `%@` among them, and those in braces. A percent sign or brace that
/// begins no whole argument is text, and so is one before a space: "50 % de" takes nothing.
[[nodiscard]] FormatArguments formatArguments(std::string_view text);

/// Them in one line: "%1$@ %2$d", or "no arguments".
[[nodiscard]] std::string described(const FormatArguments& arguments);

}  // namespace kxstrings
