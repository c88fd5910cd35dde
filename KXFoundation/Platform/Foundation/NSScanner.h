// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Reads numbers out of a text, from its start towards its end. White space before a number is skipped; the
/// scanner stops at the first character that does not belong to it. A scan that finds no number answers false
/// and leaves the position and the value as they were. The text must outlive the scanner. One thread at a
/// time; no copies, no allocation, and never more than linear time over all calls.
class KX_EXPORT NSScanner {
  public:
    explicit NSScanner(std::string_view text) noexcept;

    /// Hexadecimal digits of either case, without sign or prefix; a number too large for the type gives its
    /// largest value.
    bool scanHexInt(std::uint32_t& value) noexcept;
    bool scanHexLongLong(std::uint64_t& value) noexcept;
    /// Decimal digits after an optional sign; a number too large for the type gives its largest or smallest
    /// value.
    bool scanInt(std::int32_t& value) noexcept;

    /// Whether nothing but white space is left.
    [[nodiscard]] bool isAtEnd() const noexcept { return solid_ == text_.size(); }
    /// Whether nothing at all is left.
    [[nodiscard]] bool isAtLastPosition() const noexcept { return position_ == text_.size(); }
    /// The byte that is read next, white space included.
    [[nodiscard]] std::size_t position() const noexcept { return position_; }
    /// Steps over one character, whichever it is; a byte that belongs to none counts as one.
    void skipCharacter() noexcept;

  private:
    template <class Number>
    bool scanHex(Number& value) noexcept;
    void moveTo(std::size_t position) noexcept;

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t solid_ = 0;  // the first character at or after position_ that is no white space
};

/// The number that a text begins with, after white space; 0 if it begins with none.
[[nodiscard]] KX_EXPORT std::int32_t intValue(std::string_view text) noexcept;

}  // namespace kx
