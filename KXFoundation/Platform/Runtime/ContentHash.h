// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>

/// Fast hashes that stay the same for ever: they are written into files. Not for secrets. Pure functions; any
/// thread.
namespace kx {

/// XXH3 (64 bits, seed 0) of the text.
[[nodiscard]] KX_EXPORT std::uint64_t hashOfKey(std::string_view key) noexcept;

/// The fold of XXH3 over blocks of 2,048 bytes (the last one may be shorter): it begins as the size, and each
/// block's hash is combined as `(fold ^ hash) * 0x9E3779B185EBCA87`.
[[nodiscard]] KX_EXPORT std::uint64_t hashOfContents(std::span<const std::byte> bytes) noexcept;

/// Copies the bytes and answers hashOfContents of the copy, block by block with the next ones already on
/// their way from memory: over what no cache holds this takes as long as the copy alone.
KX_EXPORT std::uint64_t copyAndHash(std::span<const std::byte> from, std::byte* to) noexcept;

/// The same behind what `to` holds. Reserve the room before.
KX_EXPORT std::uint64_t appendAndHash(std::span<const std::byte> from, std::vector<std::byte>& to) noexcept;

}  // namespace kx
