// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/LocaleDates.h>

/// Date patterns of Unicode Technical Standard #35 that are written and read by arithmetic alone. Private to
/// Foundation.
namespace kx {

/// A pattern of literals, numbers for year, month, day, hour, minute and second, and the AM/PM symbol, taken
/// apart once: writing one takes some ten nanoseconds where ICU takes a microsecond. Immutable; any thread.
class DatePattern {
  public:
    /// Absent if the pattern asks for more (names, zones, another calendar than the locale's Gregorian one):
    /// that is ICU's work. The locale's data must live as long.
    [[nodiscard]] static std::optional<DatePattern> compile(std::string_view pattern,
                                                            const LocaleDates& locale);

    /// Appends the text for local seconds from 1970-01-01.
    void append(std::string& out, std::int64_t local) const;
    /// The local seconds that a whole text says; absent if it does not follow the pattern or names no time
    /// that is. Fields the pattern lacks are those of 1970-01-01 00:00:00. Numbers may lack leading zeros but
    /// where the next field follows at once.
    [[nodiscard]] std::optional<std::int64_t> parse(std::string_view text) const;

  private:
    struct Step {
        char field;                // a letter of the pattern, 0 for a literal
        std::uint8_t width;        // of a number: least digits
        std::uint16_t at, length;  // of a literal, in literals_
    };
    struct Reading;
    /// A pattern whose texts are all of one length, as those of times are: the literals and the AM/PM symbol
    /// in place, and where each number of two digits goes. Writing one takes no decision that depends on the
    /// pattern, so that patterns may change from text to text.
    struct FixedText {
        static constexpr std::size_t kLongest = 32, kMostNumbers = 8;
        struct Number {
            std::uint8_t at, value;  // value: an index of the source's kValues
        };
        std::array<std::array<char, kLongest>, 2> halves{};  // before and after noon
        std::array<Number, kMostNumbers> numbers{};
        std::uint8_t size = 0, count = 0;
    };

    explicit DatePattern(const LocaleDates& locale) : locale_(&locale) {}
    [[nodiscard]] bool addField(char letter, std::size_t count);
    void addLiteral(std::string_view text);
    [[nodiscard]] std::size_t longestText() const;
    [[nodiscard]] std::optional<FixedText> fixedText() const;
    void appendFixed(std::string& out, std::uint32_t second) const;
    void write(std::string& out, std::uint64_t number, unsigned width) const;
    [[nodiscard]] bool readNumber(std::string_view& text, Reading& reading, const Step& step,
                                  bool isAbutting) const;
    [[nodiscard]] bool readHalf(std::string_view& text, Reading& reading) const;

    const LocaleDates* locale_;
    std::vector<Step> steps_;
    std::string literals_;
    std::optional<FixedText> fixed_;
    std::size_t longest_ = 0;  // of the texts, but for years of five digits and more
    bool hasDate_ = false;
    bool hasLatinDigits_ = false;
};

}  // namespace kx
