// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace kx {

/// The codes of a frame: bits, least significant first, out of sub-blocks of up to 255 bytes. Blocks are
/// joined in a small buffer so that the loop over the codes sees no block ends, and 8 bytes may be loaded
/// wherever a code begins.
class GIFSubBlocks {
  public:
    explicit GIFSubBlocks(std::span<const std::uint8_t> packed) noexcept
        : at_(packed.data()), end_(packed.data() + packed.size()) {}

    /// The whole codes that can be read before the next refill.
    [[nodiscard]] std::size_t codes(unsigned size) const noexcept { return (bitEnd_ - bit_) / size; }

    /// At least 57 bits from the current place on; what lies behind the last code is zero.
    [[nodiscard]] std::uint64_t peek() const noexcept { return peek(bit_); }
    [[nodiscard]] std::uint64_t peek(std::size_t bit) const noexcept {
        static_assert(std::endian::native == std::endian::little);
        std::uint64_t bits;
        std::memcpy(&bits, buffer_.data() + (bit >> 3), sizeof bits);
        return bits >> (bit & 7);
    }
    [[nodiscard]] std::size_t bit() const noexcept { return bit_; }
    void seek(std::size_t bit) noexcept { bit_ = bit; }

    /// Joins more blocks to what is left; false when the data has none.
    bool refill() noexcept {
        const std::size_t kept = (bitEnd_ >> 3) - (bit_ >> 3);
        std::memmove(buffer_.data(), buffer_.data() + (bit_ >> 3), kept);
        bit_ &= 7;
        std::size_t filled = kept;
        while (at_ < end_ && *at_ != 0 && filled + 255 <= kRoom) filled += appendBlock(filled);
        std::memset(buffer_.data() + filled, 0, kPadding);
        bitEnd_ = filled * 8;
        return filled > kept;
    }

  private:
    static constexpr std::size_t kRoom = 4096, kPadding = 8;

    std::size_t appendBlock(std::size_t filled) noexcept {
        const std::size_t stated = *at_++, there = static_cast<std::size_t>(end_ - at_);
        const std::size_t length = stated < there ? stated : there;
        std::memcpy(buffer_.data() + filled, at_, length);
        at_ += length;
        return length;
    }

    const std::uint8_t* at_;
    const std::uint8_t* end_;
    std::size_t bit_ = 0, bitEnd_ = 0;
    std::array<std::uint8_t, kRoom + kPadding> buffer_;  // filled as far as bitEnd_ and the padding
};

}  // namespace kx
