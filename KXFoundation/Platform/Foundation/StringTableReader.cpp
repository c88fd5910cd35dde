// SPDX-License-Identifier: MIT

#include <algorithm>
#include <bit>
#include <charconv>
#include <optional>

#include <KXFoundation/Platform/Foundation/StringTableReader.h>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <KXFoundation/Platform/Foundation/UnicodeText.h>
#include <KXFoundation/Platform/Foundation/Utf8Validation.h>

namespace kx {

namespace {

constexpr std::string_view kMark = "\xEF\xBB\xBF";

constexpr bool isSpace(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool isBare(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '.' || c == '-' || c == ':' || c == '$';
}

#ifdef __SSE2__
/// A bit for each of the 32 bytes that is a quote or a backslash.
std::uint64_t quotesAndBackslashes(const char* at) noexcept {
    const auto among16 = [](const char* from) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i either = _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8('"')),
                                            _mm_cmpeq_epi8(block, _mm_set1_epi8('\\')));
        return static_cast<std::uint32_t>(_mm_movemask_epi8(either));
    };
    return among16(at) | among16(at + 16) << 16;
}
#endif

/// The first quote or backslash, else the end. Most keys end in the first 32 bytes and most texts in the 64
/// after them: smaller steps would leave the processor more jumps to guess.
char* findQuoteOrBackslash(char* at, char* end) noexcept {
#ifdef __SSE2__
    if (end - at >= 32) {
        if (const std::uint64_t found = quotesAndBackslashes(at)) return at + std::countr_zero(found);
        at += 32;
    }
    for (; end - at >= 64; at += 64) {
        if (const std::uint64_t found = quotesAndBackslashes(at) | quotesAndBackslashes(at + 32) << 32)
            return at + std::countr_zero(found);
    }
#endif
    return std::find_if(at, end, [](char c) { return c == '"' || c == '\\'; });
}

std::optional<char32_t> hexUnit(const char* at, const char* end) noexcept {
    std::uint32_t unit = 0;
    if (end - at < 4 || std::from_chars(at, at + 4, unit, 16).ptr != at + 4) return std::nullopt;
    return unit;
}

/// Takes what follows `\U` or `\u`: four hex digits, or two such escapes for a character beyond U+FFFF.
/// Absent for half a pair and for U+0000.
std::optional<char32_t> takeUnicodeEscape(const char*& at, const char* end) noexcept {
    const auto first = hexUnit(at, end);
    if (!first || *first == 0) return std::nullopt;
    at += 4;
    if ((*first & 0xF800) != 0xD800) return first;
    if (*first >= 0xDC00 || end - at < 2 || at[0] != '\\' || (at[1] | 0x20) != 'u') return std::nullopt;
    const auto second = hexUnit(at + 2, end);
    if (!second || (*second & 0xFC00) != 0xDC00) return std::nullopt;
    at += 6;
    return 0x10000 + ((*first & 0x3FF) << 10) + (*second & 0x3FF);
}

std::optional<char> simpleEscape(char c) noexcept {
    switch (c) {
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case 'r':
            return '\r';
        case '"':
        case '\'':
        case '\\':
            return c;
        default:
            return std::nullopt;
    }
}

/// Recovery: where a faulty entry ends is anybody's guess if a quote is missing, so reading goes on behind
/// the first line end after its start. Time stays linear on hostile texts: a quoted text ends at the next
/// quote, so it is read again at most once, and comments, which could be long, are never read again.
class Reader {
  public:
    Reader(std::string& text, const std::function<void(const StringTableEntry&)>& take,
           const TellStringTableFault& tell) noexcept
        : begin_(text.data()), at_(begin_), end_(begin_ + text.size()), take_(take), tell_(tell) {
        if (text.starts_with(kMark)) at_ += kMark.size();
        clean_ = text.find('\0') == text.npos && isUtf8(text);
    }

    StringTableFaults read() {
        while (skipSpace()) {
            if (!readPlainEntry()) readEntry();
        }
        return faults_;
    }

  private:
    struct Token {
        char* begin;
        char* end;
        bool escapes = false;

        [[nodiscard]] std::string_view view() const noexcept { return {begin, end}; }
    };
    using Fault = const char*;  // null for none

    /// Passes space and comments; false at the end of the text. By far the most there is is one space or line
    /// end before a quote.
    bool skipSpace() noexcept {
        if (end_ - at_ >= 2) {
            if (isSpace(*at_)) ++at_;
            if (*at_ == '"') return true;
        }
        return skipAllSpace();
    }

    [[gnu::noinline]] bool skipAllSpace() noexcept {
        for (;;) {
            while (at_ < end_ && isSpace(*at_)) ++at_;
            if (end_ - at_ < 2 || at_[0] != '/' || (at_[1] != '/' && at_[1] != '*')) return at_ < end_;
            skipComment(at_[1] == '/' ? "\n" : "*/");
            rereadFrom_ = at_;
        }
    }

    void skipComment(std::string_view close) noexcept {
        const std::string_view rest(at_ + 2, end_);
        const bool isBlock = close == "*/";
        const std::size_t closed = isBlock && neverClosed_ ? rest.npos : rest.find(close);
        if (closed != rest.npos) {
            at_ += 2 + closed + close.size();
            return;
        }
        // A comment without end costs its line, not the rest of the file; nor is the rest searched for every
        // such line.
        if (isBlock) note(at_, "a comment without end");
        neverClosed_ = neverClosed_ || isBlock;
        at_ = std::find(at_, end_, '\n');
    }

    /// An entry as programs write it, without an escape: most are. Leaves any other to readEntry.
    bool readPlainEntry() {
        constexpr std::string_view kBetween = R"(" = ")", kAfter = R"(";)";
        if (!clean_ || *at_ != '"') return false;
        char* const key = at_ + 1;
        char* const keyEnd = findQuoteOrBackslash(key, end_);
        if (!std::string_view(keyEnd, end_).starts_with(kBetween)) return false;
        char* const text = keyEnd + kBetween.size();
        char* const textEnd = findQuoteOrBackslash(text, end_);
        if (!std::string_view(textEnd, end_).starts_with(kAfter)) return false;
        at_ = textEnd + kAfter.size();
        take_({{key, keyEnd}, {text, textEnd}});
        return true;
    }

    void readEntry() {
        char* const start = rereadFrom_ = at_;
        const std::size_t linesBefore = linesMade_;
        Token key{};
        Token text{};
        Fault fault = parse(key, text);
        if (fault) {
            recover(fault);
        } else {
            fault = resolve(key);
            if (!fault) fault = resolve(text);
        }
        if (!fault) return take_({key.view(), text.view()});
        note(start, fault, linesBefore);
    }

    Fault parse(Token& key, Token& text) noexcept {
        if (!parseToken(key)) return "expected a key";
        if (!pass('=')) return "expected '=' after the key";
        if (!skipSpace() || !parseToken(text)) return "expected a text";
        return pass(';') ? nullptr : kNoSemicolon;
    }

    bool pass(char expected) noexcept {
        if (at_ < end_ && *at_ == ' ') ++at_;  // by far the most there is
        if (at_ < end_ && *at_ == expected) return ++at_, true;
        if (!skipSpace() || *at_ != expected) return false;
        ++at_;
        return true;
    }

    bool parseToken(Token& token) noexcept {
        if (*at_ == '"') return parseQuoted(token);
        token.begin = at_;
        at_ = std::find_if_not(at_, end_, isBare);
        token.end = at_;
        return token.begin != token.end;
    }

    /// False if the quote is not closed.
    bool parseQuoted(Token& token) noexcept {
        token.begin = ++at_;
        for (;;) {
            at_ = findQuoteOrBackslash(at_, end_);
            if (at_ == end_) return false;
            if (*at_ == '"') break;
            if (end_ - at_ < 2) return false;
            token.escapes = true;
            at_ += 2;
        }
        token.end = at_++;
        return true;
    }

    void recover(Fault fault) noexcept {
        if (char* const line = std::find(rereadFrom_, at_, '\n'); line != at_) {
            at_ = line + 1;
        } else if (fault != kNoSemicolon) {
            at_ = std::find_if(at_, end_, [](char c) { return c == '\n' || c == ';'; });
            if (at_ < end_) ++at_;
        }
    }

    Fault resolve(Token& token) {
        if (!clean_ && token.view().find('\0') != std::string_view::npos) return "a zero byte";
        if (!clean_ && !isUtf8(token.view())) return "no UTF-8";
        if (token.escapes && !resolveEscapes(token)) return "an unknown escape";
        return nullptr;
    }

    bool resolveEscapes(Token& token) {
        char* out = std::find(token.begin, token.end, '\\');
        const char* in = out;
        while (in < token.end) {
            if (*in != '\\') {
                *out++ = *in++;
            } else if (!resolveEscape(in, token.end, out)) {
                return false;
            }
        }
        std::fill(out, token.end, ' ');  // no line end is left there, or lines would be counted twice
        token.end = out;
        return true;
    }

    /// An escape is always longer than what it stands for.
    bool resolveEscape(const char*& in, const char* end, char*& out) {
        const char kind = in[1];
        in += 2;
        if ((kind | 0x20) == 'u') {
            const auto codePoint = takeUnicodeEscape(in, end);
            if (!codePoint) return false;
            std::string encoded;
            appendCodePoint(encoded, *codePoint);
            out = std::copy(encoded.begin(), encoded.end(), out);
            linesMade_ += *codePoint == '\n';
            return true;
        }
        const auto plain = simpleEscape(kind);
        if (!plain) return false;
        *out++ = *plain;
        linesMade_ += *plain == '\n';
        return true;
    }

    void note(const char* where, Fault reason) noexcept { note(where, reason, linesMade_); }
    void note(const char* where, Fault reason, std::size_t linesMadeBefore) noexcept {
        if (tell_) tell_(static_cast<std::size_t>(where - begin_), reason);
        if (faults_.count++ > 0) return;
        const auto lineEnds = static_cast<std::size_t>(std::count<const char*>(begin_, where, '\n'));
        faults_.firstLine = 1 + lineEnds - linesMadeBefore;
        faults_.firstReason = reason;
    }

    static constexpr Fault kNoSemicolon = "expected ';' after the text";

    char* begin_;
    char* at_;
    bool neverClosed_ = false;  // no comment ends in what is left
    char* end_;
    bool clean_;                 // the whole text is UTF-8 without a zero byte: no entry needs to be asked
    char* rereadFrom_ = begin_;  // recovery never goes back before this
    std::size_t linesMade_ = 0;  // line ends that escapes put where the file had none
    StringTableFaults faults_;
    const std::function<void(const StringTableEntry&)>& take_;
    const TellStringTableFault& tell_;
};

}  // namespace

StringTableFaults readStringTable(std::string& text, const std::function<void(const StringTableEntry&)>& take,
                                  const TellStringTableFault& tell) {
    return Reader(text, take, tell).read();
}

}  // namespace kx
