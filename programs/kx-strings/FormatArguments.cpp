// SPDX-License-Identifier: MIT

#include "FormatArguments.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>
#include <utility>

namespace kxstrings {

namespace {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isWordCharacter(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

/// The conversions that take one and the same argument, by one of them; nothing for a letter that is none.
std::string_view argumentClass(char conversion) {
    constexpr std::string_view kClasses[] = {"dioxXu", "fFeEgGaA", "s", "S", "c", "C", "p", "@"};
    for (const std::string_view letters : kClasses) {
        if (letters.find(conversion) != letters.npos) return letters.substr(0, 1);
    }
    return {};
}

class Reader {
  public:
    explicit Reader(std::string_view text) : text_(text) {}

    FormatArguments read() {
        while (at_ < text_.size()) {
            const std::size_t start = at_;
            const char c = text_[at_++];
            if (c == '%' && !takePercent()) at_ = start + 1;
            if (c == '{' && !takeBrace()) at_ = start + 1;
        }
        arguments_.mixed = count_.hasNumbered && count_.next > 1;
        return std::move(arguments_);
    }

  private:
    struct Count {
        std::size_t next = 1;  // the place of the next argument that has no number
        bool hasNumbered = false;
    };

    [[nodiscard]] char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    bool pass(char c) { return peek() == c && (++at_, true); }

    bool takePercent() {
        if (pass('%')) return true;
        const std::optional<unsigned> number = takePosition();
        const std::size_t flags = at_;
        while (std::string_view("-+#0'").find(peek()) != std::string_view::npos && peek() != '\0') ++at_;
        const bool needsWidth = text_.substr(flags, at_ - flags).find('-') != std::string_view::npos;
        std::set<std::string> found;
        Count count = count_;
        const std::size_t width = at_;
        takeWidth(found, count);
        if (needsWidth && at_ == width) return false;  // "20%-os" is a word
        if (pass('.')) takeWidth(found, count);
        const std::string length = takeLength();
        const std::string_view kind = argumentClass(peek());
        if (kind.empty()) return false;
        ++at_;
        found.insert(name(number, count, length + std::string(kind)));
        count_ = count;
        arguments_.names.merge(found);
        return true;
    }

    /// The number of `2$`; where none stands, nothing is taken.
    std::optional<unsigned> takePosition() {
        unsigned number = 0;
        const char* const begin = text_.data() + at_;
        const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), number);
        const auto digits = static_cast<std::size_t>(end - begin);
        if (error != std::errc() || number == 0 || text_.substr(at_ + digits, 1) != "$") return std::nullopt;
        at_ += digits + 1;
        return number;
    }

    /// Digits, or a `*` that is an argument itself.
    void takeWidth(std::set<std::string>& found, Count& count) {
        if (pass('*')) {
            found.insert(name(takePosition(), count, "d"));
        } else {
            while (isDigit(peek())) ++at_;
        }
    }

    /// Without those of the lengths that make no other argument.
    std::string takeLength() {
        std::string length;
        while (std::string_view("hlqjztL").find(peek()) != std::string_view::npos && peek() != '\0') {
            if (peek() != 'h') length += peek();
            ++at_;
        }
        return length == "ll" ? "q" : length;
    }

    static std::string name(std::optional<unsigned> number, Count& count, const std::string& kind) {
        count.hasNumbered = count.hasNumbered || number;
        return "%" + std::to_string(number ? *number : count.next++) + "$" + kind;
    }

    bool takeBrace() {
        if (pass('{')) return true;
        const std::size_t begin = at_;
        while (isWordCharacter(peek())) ++at_;
        std::string field(text_.substr(begin, at_ - begin));
        if (pass(':')) at_ = std::min(text_.find_first_of("{}", at_), text_.size());
        if (!pass('}')) return false;
        if (field.empty()) field = std::to_string(nextBrace_++);
        arguments_.names.insert("{" + field + "}");
        return true;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    Count count_;
    std::size_t nextBrace_ = 0;
    FormatArguments arguments_;
};

}  // namespace

FormatArguments formatArguments(std::string_view text) {
    return Reader(text).read();
}

std::string described(const FormatArguments& arguments) {
    std::string line;
    for (const std::string& name : arguments.names) line += (line.empty() ? "" : " ") + name;
    return line.empty() ? "no arguments" : line;
}

}  // namespace kxstrings
