// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kxstrings {

/// A piece of a C++ source. Comments, includes, and what stands in single quotes are none.
struct Token {
    enum class Kind : std::uint8_t {
        Text,  ///< a string literal, escapes resolved, adjacent ones put together
        Word,  ///< a name or number
        Sign,  ///< any other character
    } kind;
    std::string text;
    std::size_t line;  ///< where it begins, counted from 1
};

/// Takes any bytes; what is no C++ gives tokens of little meaning. Time linear in the length.
[[nodiscard]] std::vector<Token> cppTokens(std::string_view source);

}  // namespace kxstrings
