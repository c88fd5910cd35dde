// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// An IPv4 address in network order: the first byte is the first number of the text.
struct KX_EXPORT IPv4Address {
    std::array<std::uint8_t, 4> bytes{};

    /// "192.168.1.57".
    [[nodiscard]] std::string text() const;

    bool operator==(const IPv4Address&) const = default;
};

}  // namespace kx
