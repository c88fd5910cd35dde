// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace kx {

/// How many rounds of a fault to run: as many as the program was asked for (--rounds N), else `usual`.
[[nodiscard]] std::size_t askedRounds(std::size_t usual);

}  // namespace kx
