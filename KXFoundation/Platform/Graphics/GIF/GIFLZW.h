// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kx {

class GIFSubBlocks;

/// Unpacks a frame's indices. The dictionary lives in the output: a new string is the string before plus the
/// byte that follows it, and the two already stand there side by side. So an entry is a (position, length),
/// adding one is one store, and literals, which stand once in front of the output, are copied like any other
/// string.
class GIFLZW {
  public:
    static constexpr std::size_t kMaxCodes = 4096;

    /// What must lie before the output: each byte value at its own place.
    static constexpr std::size_t kLiterals = 256;
    /// What must lie behind it: it is looked at once in kGroup codes whether the output is full, a string is
    /// at most kMaxCodes long and may be overshot by one move.
    static constexpr std::size_t kGroup = 4, kMove = 16;
    static constexpr std::size_t kSlack = kGroup * kMaxCodes + 2 * kMove;

    enum class Outcome : std::uint8_t { Complete, Ended, Corrupt };

    /// Unpacks up to `count` indices to `plane + kLiterals`, writing inside [plane, plane + kLiterals + count
    /// + kSlack). Tells how many are good in `reached`, whatever the outcome.
    Outcome unpack(std::span<const std::uint8_t> packed, unsigned minimumCodeSize, std::uint8_t* plane,
                   std::size_t count, std::size_t& reached) noexcept;

  private:
    enum class Stop : std::uint8_t { CountDone, OutputFull, ClearCode, EndCode, BadCode };

    /// The low half is the string's position in the plane, the high half its length.
    using Entry = std::uint64_t;
    static constexpr Entry kOneLonger = Entry{1} << 32;

    void useCodeSize(unsigned minimumCodeSize) noexcept;
    void clear() noexcept;
    Stop firstString(GIFSubBlocks& input) noexcept;
    template <bool growing>
    Stop strings(GIFSubBlocks& input, std::size_t count) noexcept;

    std::array<Entry, kMaxCodes> table_;  // as far as next_
    unsigned minimumCodeSize_ = 0;
    std::uint32_t clearCode_ = 0;

    std::uint8_t* plane_ = nullptr;
    std::size_t out_ = 0, end_ = 0;  // places in the plane
    Entry previous_ = 0;             // the string before, one longer: the entry that comes next
    std::uint32_t next_ = 0;         // where it goes
    unsigned codeSize_ = 0;
};

}  // namespace kx
