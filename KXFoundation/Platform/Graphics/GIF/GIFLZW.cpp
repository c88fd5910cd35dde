// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstring>

#include <KXFoundation/Platform/Graphics/GIF/GIFLZW.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFSubBlocks.h>

namespace kx {

namespace {

constexpr unsigned kMaxCodeSize = 12;
constexpr std::uint32_t kReserved = 0x4000'0000;  // a length no string has: the codes that clear and end

// One load, one store: the places may overlap.
void move16(std::uint8_t* to, const std::uint8_t* from) noexcept {
    std::array<std::uint8_t, 16> bytes;
    std::memcpy(bytes.data(), from, bytes.size());
    std::memcpy(to, bytes.data(), bytes.size());
}

// The part of a string that the first move left.
void moveRest(std::uint8_t* to, const std::uint8_t* from, std::size_t length) noexcept {
    for (std::size_t i = 16; i < length; i += 16) move16(to + i, from + i);
}

}  // namespace

void GIFLZW::useCodeSize(unsigned minimumCodeSize) noexcept {
    if (minimumCodeSize == minimumCodeSize_) return;
    minimumCodeSize_ = minimumCodeSize;
    clearCode_ = 1U << minimumCodeSize;
    for (std::uint32_t code = 0; code < clearCode_; ++code) table_[code] = kOneLonger | code;
    table_[clearCode_] = table_[clearCode_ + 1] = Entry{kReserved} << 32;
}

void GIFLZW::clear() noexcept {
    next_ = clearCode_ + 2;
    codeSize_ = minimumCodeSize_ + 1;
}

GIFLZW::Outcome GIFLZW::unpack(std::span<const std::uint8_t> packed, unsigned minimumCodeSize,
                               std::uint8_t* plane, std::size_t count, std::size_t& reached) noexcept {
    plane_ = plane;
    out_ = kLiterals;
    end_ = kLiterals + count;
    useCodeSize(minimumCodeSize);
    clear();

    GIFSubBlocks input(packed);
    bool fresh = true;  // the next code starts a dictionary
    Stop stop = Stop::CountDone;
    while (out_ < end_ && stop != Stop::EndCode && stop != Stop::BadCode) {
        const std::size_t codes = input.codes(codeSize_);
        if (codes == 0) {
            if (!input.refill()) break;
            continue;
        }
        if (fresh)
            stop = firstString(input);
        else if (next_ == kMaxCodes)
            stop = strings<false>(input, codes);
        else
            stop = strings<true>(input, std::min<std::size_t>(codes, (1U << codeSize_) - next_));

        fresh = stop == Stop::ClearCode;
        if (fresh)
            clear();
        else if (next_ == 1U << codeSize_ && codeSize_ < kMaxCodeSize)
            ++codeSize_;
    }
    reached = std::min(out_, end_) - kLiterals;
    if (out_ >= end_) return Outcome::Complete;
    return stop == Stop::BadCode ? Outcome::Corrupt : Outcome::Ended;
}

// The one code that adds no entry.
GIFLZW::Stop GIFLZW::firstString(GIFSubBlocks& input) noexcept {
    const auto code = static_cast<std::uint32_t>(input.peek() & ((1U << codeSize_) - 1));
    input.seek(input.bit() + codeSize_);
    if (code == clearCode_) return Stop::ClearCode;
    if (code == clearCode_ + 1) return Stop::EndCode;
    if (code > clearCode_) return Stop::BadCode;
    plane_[out_] = static_cast<std::uint8_t>(code);
    previous_ = 2 * kOneLonger | out_++;
    return Stop::CountDone;
}

// `count` codes of one size. While the dictionary grows each adds an entry, and there is room for all of
// them.
template <bool growing>
GIFLZW::Stop GIFLZW::strings(GIFSubBlocks& input, std::size_t count) noexcept {
    std::uint8_t* const plane = plane_;
    const unsigned size = codeSize_;
    const std::uint64_t mask = (1U << size) - 1;
    std::size_t out = out_, bit = input.bit();
    std::uint32_t next = next_;
    Entry previous = previous_;
    Stop stop = Stop::CountDone;

    const auto string = [&](std::uint64_t code) __attribute__((always_inline)) {
        bit += size;
        if (growing) table_[next] = previous;
        const bool itself = growing && code >= next;  // the string that is only being added
        if (itself && code > next) [[unlikely]] {
            stop = Stop::BadCode;
            return false;
        }
        const Entry entry = table_[code];
        const std::uint8_t* from = plane + static_cast<std::uint32_t>(entry);
        const std::size_t length = entry >> 32;
        move16(plane + out, from);
        if (length > kMove) [[unlikely]] {
            if (length == kReserved) {
                stop = code == clearCode_ ? Stop::ClearCode : Stop::EndCode;
                return false;
            }
            moveRest(plane + out, from, length);
        }
        if (itself) plane[out + length - 1] = plane[out];
        previous = (Entry{length + 1} << 32) | out;
        out += length;
        if (growing) ++next;
        return true;
    };

    while (count >= kGroup && out < end_) {
        std::uint64_t bits = input.peek(bit);
        for (std::size_t i = 0; i < kGroup; ++i, bits >>= size)
            if (!string(bits & mask)) goto done;
        count -= kGroup;
    }
    for (; count > 0 && out < end_; --count)
        if (!string(input.peek(bit) & mask)) break;
done:
    input.seek(bit);
    out_ = out;
    next_ = next;
    previous_ = previous;
    return stop;
}

}  // namespace kx
