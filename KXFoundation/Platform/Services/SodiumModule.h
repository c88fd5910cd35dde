// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

/// The table between the library and its module over libsodium (Modules/SodiumModule.cpp): authenticated
/// encryption with a random nonce (XChaCha20-Poly1305, IETF). Any thread.
namespace kx {

struct SodiumModule {
    static constexpr std::uint32_t kVersion = 1;
    static constexpr std::size_t kKeySize = 32;
    /// A box is that much longer than what is in it: 24 bytes of nonce before, 16 of tag behind.
    static constexpr std::size_t kOverhead = 24 + 16;

    std::uint32_t version;
    void (*makeKey)(std::uint8_t* key);
    /// Writes size + kOverhead bytes to `box`. The label is not in the box but needed to open it.
    void (*seal)(const std::uint8_t* key, const void* label, std::size_t labelSize, const void* text,
                 std::size_t size, std::uint8_t* box);
    /// Writes size - kOverhead bytes to `text`; false if the box was not sealed with this key and label.
    bool (*open)(const std::uint8_t* key, const void* label, std::size_t labelSize, const std::uint8_t* box,
                 std::size_t size, void* text);
};

}  // namespace kx
