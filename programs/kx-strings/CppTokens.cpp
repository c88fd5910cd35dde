// SPDX-License-Identifier: MIT

#include "CppTokens.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include <KXFoundation/Platform/Foundation/UnicodeText.h>

namespace kxstrings {

namespace {

constexpr bool isWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

/// What the rest of a literal's prefix says, of `R`, `u8R` and the like.
bool isLiteralPrefix(std::string_view word, bool& raw) {
    raw = word.ends_with('R');
    if (raw) word.remove_suffix(1);
    return word.empty() || word == "u8" || word == "u" || word == "U" || word == "L";
}

class Lexer {
  public:
    explicit Lexer(std::string_view source) : source_(source) {}

    std::vector<Token> read() {
        while (at_ < source_.size()) step();
        return std::move(tokens_);
    }

  private:
    void step() {
        const std::string_view rest = source_.substr(at_);
        const char c = rest[0];
        if (rest.starts_with("//")) return skip(std::min(rest.find('\n'), rest.size()));
        if (rest.starts_with("/*")) return skip(std::min(rest.find("*/", 2), rest.size() - 2) + 2);
        if (c == '"') return takeText();
        if (c == '\'') return skipCharacter();
        if (c == '#') return takeDirective();
        if (isWordCharacter(c)) return takeWord();
        if (c != ' ' && (c < '\t' || c > '\r')) add(Token::Kind::Sign, std::string(1, c));
        skip(1);
    }

    void skip(std::size_t length) {
        line_ += static_cast<std::size_t>(std::ranges::count(source_.substr(at_, length), '\n'));
        at_ += length;
    }

    void add(Token::Kind kind, std::string text) { addAt(kind, std::move(text), line_); }
    void addAt(Token::Kind kind, std::string text, std::size_t line) {
        const bool joins = kind == Token::Kind::Text && !tokens_.empty() && tokens_.back().kind == kind;
        if (joins) {
            tokens_.back().text += text;
        } else {
            tokens_.push_back({kind, std::move(text), line});
        }
    }

    void takeDirective() {
        const std::size_t name = source_.find_first_not_of(" \t", at_ + 1);
        const bool includes = name != source_.npos && source_.substr(name).starts_with("include");
        skip(includes ? std::min(source_.find('\n', at_), source_.size()) - at_ : 1);
    }

    void takeWord() {
        const std::size_t begin = at_;
        const bool isNumber = source_[at_] >= '0' && source_[at_] <= '9';
        // The quotes in 1'000 are no literal's.
        while (at_ < source_.size() && (isWordCharacter(source_[at_]) || (isNumber && source_[at_] == '\'')))
            ++at_;
        const std::string_view word = source_.substr(begin, at_ - begin);
        bool raw = false;
        if (source_.substr(at_, 1) != "\"" || !isLiteralPrefix(word, raw))
            return add(Token::Kind::Word, std::string(word));
        if (raw) return takeRawText();
        takeText();
    }

    /// A literal without its end ends with its line.
    void takeText() {
        const std::size_t line = line_;
        std::string text;
        ++at_;
        while (at_ < source_.size() && source_[at_] != '"' && source_[at_] != '\n') {
            if (source_[at_] == '\\' && at_ + 1 < source_.size()) {
                ++at_;
                takeEscape(text);
            } else {
                text += source_[at_++];
            }
        }
        if (source_.substr(at_, 1) == "\"") ++at_;
        endText(std::move(text), line);
    }

    void takeRawText() {
        constexpr std::size_t kLongestDelimiter = 16;  // [lex.string]
        const std::size_t line = line_;
        const std::string_view rest = source_.substr(at_ + 1);
        const std::size_t open = rest.substr(0, kLongestDelimiter + 1).find('(');
        if (open == rest.npos) return takeText();
        const std::string close = ")" + std::string(rest.substr(0, open)) + "\"";
        const std::size_t end = std::min(rest.find(close, open), rest.size());
        skip(std::min(1 + end + close.size(), rest.size() + 1));
        endText(std::string(rest.substr(open + 1, end - open - 1)), line);
    }

    /// Passes the suffix of literals such as "key"sv.
    void endText(std::string text, std::size_t line) {
        while (at_ < source_.size() && isWordCharacter(source_[at_])) ++at_;
        addAt(Token::Kind::Text, std::move(text), line);
    }

    void takeEscape(std::string& text) {
        constexpr std::string_view kLetters = "ntrabfv";
        constexpr std::string_view kMeanings = "\n\t\r\a\b\f\v";
        const char c = source_[at_++];
        if (const auto letter = kLetters.find(c); letter != kLetters.npos) {
            text += kMeanings[letter];
        } else if (c == 'u' || c == 'U') {
            kx::appendCodePoint(text, takeNumber(16, c == 'u' ? 4 : 8));
        } else if (c == 'x') {
            text += static_cast<char>(takeNumber(16, source_.size()));
        } else if (c >= '0' && c <= '7') {
            --at_;
            text += static_cast<char>(takeNumber(8, 3));
        } else if (c == '\n') {
            ++line_;
        } else {
            text += c;
        }
    }

    std::uint32_t takeNumber(int base, std::size_t digits) {
        std::uint32_t number = 0;
        const std::string_view rest = source_.substr(at_, digits);
        at_ += static_cast<std::size_t>(
            std::from_chars(rest.data(), rest.data() + rest.size(), number, base).ptr - rest.data());
        return number;
    }

    void skipCharacter() {
        for (++at_; at_ < source_.size() && source_[at_] != '\'' && source_[at_] != '\n'; ++at_) {
            if (source_[at_] == '\\' && at_ + 1 < source_.size() && source_[at_ + 1] != '\n') ++at_;
        }
        if (source_.substr(at_, 1) == "'") ++at_;
        add(Token::Kind::Word, "");
    }

    std::string_view source_;
    std::size_t at_ = 0;
    std::size_t line_ = 1;
    std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> cppTokens(std::string_view source) {
    return Lexer(source).read();
}

}  // namespace kxstrings
