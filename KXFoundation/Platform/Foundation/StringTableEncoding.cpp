// SPDX-License-Identifier: MIT

#include <cstdint>
#include <utility>

#include <KXFoundation/Platform/Foundation/StringTableReader.h>
#include <KXFoundation/Platform/Foundation/UnicodeText.h>

namespace kx {

namespace {

constexpr char kNoText = '\xFF';  // no UTF-8 holds it

enum class Encoding : std::uint8_t { Utf8, Utf16BigEndian, Utf16LittleEndian };

/// By the mark, else by the zero half of the first unit: a table begins with an ASCII character.
Encoding encodingOf(std::string_view bytes) noexcept {
    if (bytes.size() < 2) return Encoding::Utf8;
    if (bytes.starts_with("\xFE\xFF") || (bytes[0] == 0 && bytes[1] != 0)) return Encoding::Utf16BigEndian;
    if (bytes.starts_with("\xFF\xFE") || (bytes[0] != 0 && bytes[1] == 0)) return Encoding::Utf16LittleEndian;
    return Encoding::Utf8;
}

bool isHighSurrogate(char32_t unit) noexcept {
    return (unit & 0xFC00) == 0xD800;
}
bool isLowSurrogate(char32_t unit) noexcept {
    return (unit & 0xFC00) == 0xDC00;
}

class Utf16Units {
  public:
    Utf16Units(std::string_view bytes, Encoding encoding) noexcept
        : bytes_(bytes), high_(encoding == Encoding::Utf16BigEndian ? 0 : 1) {}

    [[nodiscard]] std::size_t size() const noexcept { return bytes_.size() / 2; }
    [[nodiscard]] char32_t operator[](std::size_t i) const noexcept {
        return static_cast<char32_t>(byte(2 * i + high_) << 8 | byte(2 * i + 1 - high_));
    }

  private:
    [[nodiscard]] unsigned byte(std::size_t i) const noexcept {
        return static_cast<unsigned char>(bytes_[i]);
    }

    std::string_view bytes_;
    std::size_t high_;
};

std::string utf8Of(const Utf16Units& units) {
    std::string text;
    text.reserve(units.size());
    for (std::size_t i = units.size() > 0 && units[0] == 0xFEFF ? 1 : 0; i < units.size(); ++i) {
        const char32_t unit = units[i];
        if (isHighSurrogate(unit) && i + 1 < units.size() && isLowSurrogate(units[i + 1])) {
            appendCodePoint(text, 0x10000 + ((unit & 0x3FF) << 10) + (units[++i] & 0x3FF));
        } else if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
            text.push_back(kNoText);
        } else {
            appendCodePoint(text, unit);
        }
    }
    return text;
}

}  // namespace

std::string stringTableText(std::string bytes) {
    const Encoding encoding = encodingOf(bytes);
    return encoding == Encoding::Utf8 ? std::move(bytes) : utf8Of({bytes, encoding});
}

}  // namespace kx
