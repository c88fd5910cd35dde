// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstring>

#include <KXFoundation/Platform/Foundation/DatePattern.h>
#include <KXFoundation/Platform/Foundation/LocalTime.h>
#include <KXFoundation/Platform/Foundation/Utf8Validation.h>

namespace kx {

namespace {

constexpr std::size_t kLongestPattern = 128;
constexpr std::size_t kMostDigits = 20;

bool isLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Takes what stands between quotes off the pattern; two quotes are one that is meant.
std::string takeQuoted(std::string_view& pattern) {
    std::string text;
    if (pattern.starts_with("''")) {
        pattern.remove_prefix(2);
        return "'";
    }
    pattern.remove_prefix(1);
    while (!pattern.empty()) {
        const bool isQuote = pattern.front() == '\'';
        if (isQuote && !pattern.starts_with("''")) {
            pattern.remove_prefix(1);
            break;
        }
        text += pattern.front();
        pattern.remove_prefix(isQuote ? 2 : 1);
    }
    return text;
}

}  // namespace

std::optional<DatePattern> DatePattern::compile(std::string_view pattern, const LocaleDates& locale) {
    if (pattern.size() > kLongestPattern || !isUtf8(pattern)) return std::nullopt;
    if (std::ranges::any_of(locale.digits(), &std::string::empty)) return std::nullopt;
    DatePattern made(locale);
    made.hasLatinDigits_ = locale.digits()[0] == "0";
    while (!pattern.empty()) {
        const char first = pattern.front();
        if (first == '\'') {
            made.addLiteral(takeQuoted(pattern));
            continue;
        }
        const std::size_t count =
            isLetter(first) ? std::min(pattern.find_first_not_of(first), pattern.size()) : 1;
        if (!isLetter(first)) {
            made.addLiteral(pattern.substr(0, 1));
        } else if (!made.addField(first, count)) {
            return std::nullopt;
        }
        pattern.remove_prefix(count);
    }
    if (made.hasDate_ && !locale.usesGregorianCalendar()) return std::nullopt;
    made.longest_ = made.longestText();
    made.fixed_ = made.fixedText();
    return made;
}

bool DatePattern::addField(char letter, std::size_t count) {
    static constexpr struct {
        char letter;
        std::size_t mostLetters;
        bool isOfDate;
    } kFields[] = {
        {'y', 9, true},  {'M', 2, true},  {'L', 2, true},  {'d', 2, true},  {'H', 2, false}, {'k', 2, false},
        {'h', 2, false}, {'K', 2, false}, {'m', 2, false}, {'s', 2, false}, {'a', 3, false},
    };
    const auto found = std::ranges::find(kFields, letter, [](const auto& row) { return row.letter; });
    if (found == std::end(kFields) || count > found->mostLetters) return false;
    hasDate_ = hasDate_ || found->isOfDate;
    const char field = letter == 'L' ? 'M' : letter == 'y' && count == 2 ? 'Y' : letter;
    steps_.push_back({field, static_cast<std::uint8_t>(count), 0, 0});
    return true;
}

void DatePattern::addLiteral(std::string_view text) {
    const bool joins = !steps_.empty() && steps_.back().field == 0;
    if (!joins) steps_.push_back({0, 0, static_cast<std::uint16_t>(literals_.size()), 0});
    literals_ += text;
    steps_.back().length = static_cast<std::uint16_t>(steps_.back().length + text.size());
}

std::size_t DatePattern::longestText() const {
    std::size_t length = literals_.size();
    for (const Step& step : steps_) {
        const std::size_t half = std::max(locale_->amSymbol().size(), locale_->pmSymbol().size());
        const std::size_t digits = step.field == 'y' ? std::max<std::size_t>(step.width, 4) : 2;
        if (step.field != 0) length += step.field == 'a' ? half : digits * locale_->digits()[0].size();
    }
    return length;
}

namespace {

/// The numbers of a time of day, by the letters of their fields.
constexpr std::string_view kValues = "HkhKms";

std::array<std::uint32_t, kValues.size()> valuesOf(std::uint32_t second) noexcept {
    const std::uint32_t hour = second / 3600, half = hour % 12;
    return {hour, hour == 0 ? 24 : hour, half == 0 ? 12 : half, half, second / 60 % 60, second % 60};
}

constexpr auto kPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

}  // namespace

std::optional<DatePattern::FixedText> DatePattern::fixedText() const {
    const std::string &am = locale_->amSymbol(), &pm = locale_->pmSymbol();
    if (!hasLatinDigits_ || hasDate_ || am.size() != pm.size() || longest_ > FixedText::kLongest)
        return std::nullopt;
    FixedText fixed;
    const auto add = [&](std::string_view beforeNoon, std::string_view afterNoon) {
        std::ranges::copy(beforeNoon, fixed.halves[0].begin() + fixed.size);
        std::ranges::copy(afterNoon, fixed.halves[1].begin() + fixed.size);
        fixed.size = static_cast<std::uint8_t>(fixed.size + beforeNoon.size());
    };
    for (const Step& step : steps_) {
        const auto literal = std::string_view(literals_).substr(step.at, step.length);
        if (step.field == 0) {
            add(literal, literal);
        } else if (step.field == 'a') {
            add(am, pm);
        } else if (step.width == 2 && fixed.count < FixedText::kMostNumbers) {
            fixed.numbers[fixed.count++] = {fixed.size, static_cast<std::uint8_t>(kValues.find(step.field))};
            add("00", "00");
        } else {
            return std::nullopt;
        }
    }
    return fixed;
}

void DatePattern::appendFixed(std::string& out, std::uint32_t second) const {
    const auto values = valuesOf(second);
    const std::size_t start = out.size();
    out.append(fixed_->halves[values[0] >= 12].data(), fixed_->size);
    char* const text = out.data() + start;
    for (std::size_t i = 0; i < fixed_->count; ++i) {
        const auto [at, value] = fixed_->numbers[i];
        std::memcpy(text + at, kPairs.data() + std::size_t{2} * values[value], 2);
    }
}

void DatePattern::write(std::string& out, std::uint64_t number, unsigned width) const {
    if (hasLatinDigits_ && width == 2 && number < 100) {
        out.push_back(static_cast<char>('0' + number / 10));
        out.push_back(static_cast<char>('0' + number % 10));
        return;
    }
    std::uint8_t digits[kMostDigits];
    unsigned count = 0;
    for (; number != 0 || count < std::max(width, 1U); number /= 10) {
        digits[count++] = static_cast<std::uint8_t>(number % 10);
    }
    while (count != 0) out += locale_->digits()[digits[--count]];
}

void DatePattern::append(std::string& out, std::int64_t local) const {
    const DayAndSecond time(local);
    if (fixed_) return appendFixed(out, static_cast<std::uint32_t>(time.second));
    const CivilDate date = hasDate_ ? civilFromDays(time.day) : CivilDate{};
    const auto second = static_cast<std::uint32_t>(time.second);
    const std::uint32_t hour = second / 3600;
    const auto year = static_cast<std::uint64_t>(date.year > 0 ? date.year : 1 - date.year);  // of its era
    if (longest_ > out.capacity()) out.reserve(longest_);
    for (const Step& step : steps_) {
        const auto number = [&](std::uint64_t value) { write(out, value, step.width); };
        // Single bytes: the texts are shorter than a call to copy them is long.
        const auto text = [&](std::string_view bytes) {
            for (const char c : bytes) out.push_back(c);
        };
        switch (step.field) {
            case 0:
                text({literals_.data() + step.at, step.length});
                break;
            case 'a':
                text(hour < 12 ? locale_->amSymbol() : locale_->pmSymbol());
                break;
            case 'y':
                number(year);
                break;
            case 'Y':
                number(year % 100);
                break;
            case 'M':
                number(static_cast<std::uint64_t>(date.month));
                break;
            case 'd':
                number(static_cast<std::uint64_t>(date.day));
                break;
            default:
                number(valuesOf(second)[kValues.find(step.field)]);
                break;
        }
    }
}

/// The numbers of a text, as they come.
struct DatePattern::Reading {
    std::int64_t year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0;
    std::optional<std::int64_t> halfDayHour;  // 0 to 11
    bool isAfternoon = false;

    bool take(char field, std::int64_t number) noexcept {
        const auto within = [&](std::int64_t& into, std::int64_t least, std::int64_t most) {
            into = number;
            return number >= least && number <= most;
        };
        switch (field) {
            case 'y':
                return within(year, 1, kLastYear);
            // Two digits mean a year from 1950 to 2049.
            case 'Y':
                return within(year, 0, 99) && (year += number < 50 ? 2000 : 1900, true);
            case 'M':
                return within(month, 1, 12);
            case 'd':
                return within(day, 1, 31);
            case 'H':
                return within(hour, 0, 23);
            case 'k':
                return within(hour, 1, 24) && (hour %= 24, true);
            case 'h':
                return within(halfDayHour.emplace(), 1, 12) && (*halfDayHour %= 12, true);
            case 'K':
                return within(halfDayHour.emplace(), 0, 11);
            case 'm':
                return within(minute, 0, 59);
            default:
                return within(second, 0, 59);
        }
    }
    [[nodiscard]] std::optional<std::int64_t> local() const noexcept {
        if (day > daysInMonth(year, static_cast<int>(month))) return std::nullopt;
        const std::int64_t fullHour = halfDayHour ? *halfDayHour + (isAfternoon ? 12 : 0) : hour;
        return daysFromCivil(year, static_cast<int>(month), static_cast<int>(day)) * kSecondsPerDay +
               fullHour * 3600 + minute * 60 + second;
    }
};

bool DatePattern::readNumber(std::string_view& text, Reading& reading, const Step& step,
                             bool isAbutting) const {
    const std::size_t widest = step.field == 'y' ? std::max<std::size_t>(6, step.width) : 2;
    const std::size_t most = isAbutting ? std::min<std::size_t>(step.width, widest) : widest;
    std::int64_t number = 0;
    std::size_t count = 0;
    for (; count < most; ++count) {
        const auto digit =
            std::ranges::find_if(locale_->digits(), [&](const auto& d) { return text.starts_with(d); });
        if (digit == locale_->digits().end()) break;
        number = number * 10 + (digit - locale_->digits().begin());
        text.remove_prefix(digit->size());
    }
    return count != 0 && (!isAbutting || count == most) && reading.take(step.field, number);
}

bool DatePattern::readHalf(std::string_view& text, Reading& reading) const {
    for (const bool isAfternoon : {false, true}) {
        const std::string& symbol = isAfternoon ? locale_->pmSymbol() : locale_->amSymbol();
        if (symbol.empty() || !text.starts_with(symbol)) continue;
        text.remove_prefix(symbol.size());
        reading.isAfternoon = isAfternoon;
        return true;
    }
    return false;
}

std::optional<std::int64_t> DatePattern::parse(std::string_view text) const {
    Reading reading;
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        const Step& step = steps_[i];
        const char next = i + 1 < steps_.size() ? steps_[i + 1].field : '\0';
        bool isRead = false;
        if (step.field == 0) {
            const auto literal = std::string_view(literals_).substr(step.at, step.length);
            isRead = text.starts_with(literal);
            if (isRead) text.remove_prefix(literal.size());
        } else if (step.field == 'a') {
            isRead = readHalf(text, reading);
        } else {
            isRead = readNumber(text, reading, step, next != '\0' && next != 'a');
        }
        if (!isRead) return std::nullopt;
    }
    return text.empty() ? reading.local() : std::nullopt;
}

}  // namespace kx
