// SPDX-License-Identifier: MIT

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSURL.h>
#include <KXFoundation/Platform/Foundation/PercentEncoding.h>

namespace kx {

namespace {

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::string_view kReserved = ":/?#[]@!$&'()*+,;=";  // RFC 3986, 2.2

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return kLetters.find(c) != kLetters.npos;
}

int hexValue(char c) {
    if (isDigit(c)) return c - '0';
    const char upper = static_cast<char>(c & ~0x20);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

/// The byte that "%XY" at `at` stands for; -1 if it is none.
int encodedByte(std::string_view text, std::size_t at) {
    if (text[at] != '%' || at + 2 >= text.size()) return -1;
    const int high = hexValue(text[at + 1]);
    const int low = hexValue(text[at + 2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

bool isWellFormed(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (isUnreserved(text[at]) || kReserved.find(text[at]) != kReserved.npos) continue;
        if (encodedByte(text, at) <= 0) return false;
        at += 2;
    }
    return !text.empty();
}

std::string percentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int byte = encodedByte(text, at);
        decoded += byte < 0 ? text[at] : static_cast<char>(byte);
        if (byte >= 0) at += 2;
    }
    return decoded;
}

void appendPathEncoded(std::string& text, std::string_view path) {
    text += percentEncoded(path, [](char c) { return isUnreserved(c) || c == '/'; });
}

/// Where the scheme's ":" is; npos for a relative address.
std::size_t schemeLength(std::string_view text) {
    const auto end = std::ranges::find_if_not(
        text, [](char c) { return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.'; });
    const bool found = end != text.begin() && end != text.end() && *end == ':' && isLetter(text.front());
    return found ? static_cast<std::size_t>(end - text.begin()) : text.npos;
}

/// RFC 3986, 3.2: behind the user a host, a literal address of which stands in brackets, and a port's digits.
bool isAuthority(std::string_view text) {
    text.remove_prefix(text.rfind('@') + 1);
    const bool isLiteral = text.starts_with('[');
    const std::size_t end = isLiteral ? text.find(']') : std::min(text.find(':'), text.size());
    if (end == text.npos || (isLiteral && end == 1)) return false;
    const std::string_view host = text.substr(isLiteral, end - isLiteral),
                           port = text.substr(end + isLiteral);
    return host.find_first_of("[]") == host.npos &&
           (port.empty() || (port.front() == ':' && std::ranges::all_of(port.substr(1), isDigit)));
}

}  // namespace

NSURL::NSURL(std::string text) : text_(std::move(text)) {
    const std::string_view all = text_;
    const std::size_t colon = schemeLength(all);
    if (colon != all.npos) schemeEnd_ = colon, pathStart_ = colon + 1;
    fragmentStart_ = std::min(all.find('#', pathStart_), all.size());
    queryStart_ = std::min(all.find('?', pathStart_), fragmentStart_);
    authorityStart_ = pathStart_;
    if (slice(pathStart_, queryStart_).starts_with("//")) {
        authorityStart_ += 2;
        pathStart_ = std::min(all.find('/', authorityStart_), queryStart_);
    }
}

NSURL NSURL::fileURLWithPath(std::string_view path) {
    std::string absolute(path.substr(0, path.find('\0')));
    if (!absolute.starts_with('/')) {
        std::error_code error;
        absolute = std::filesystem::absolute(absolute.empty() ? "." : absolute, error).string();
    }
    std::string text = "file://";
    appendPathEncoded(text, absolute);
    return NSURL(std::move(text));
}

std::optional<NSURL> NSURL::URLWithString(std::optional<std::string_view> text) {
    if (!text || !isWellFormed(*text)) return std::nullopt;
    NSURL url{std::string(*text)};
    const bool hasOneFragment = url.fragment().value_or("").find('#') == std::string_view::npos;
    return hasOneFragment && isAuthority(url.authority()) ? std::optional(std::move(url)) : std::nullopt;
}

std::string_view NSURL::slice(std::size_t from, std::size_t to) const noexcept {
    return std::string_view(text_).substr(from, to - from);
}

std::string_view NSURL::scheme() const noexcept {
    return slice(0, schemeEnd_);
}

std::string_view NSURL::authority() const noexcept {
    return slice(authorityStart_, pathStart_);
}

std::string NSURL::path() const {
    return percentDecoded(slice(pathStart_, queryStart_));
}

std::optional<std::string_view> NSURL::query() const noexcept {
    if (queryStart_ == fragmentStart_) return std::nullopt;
    return slice(queryStart_ + 1, fragmentStart_);
}

std::optional<std::string_view> NSURL::fragment() const noexcept {
    if (fragmentStart_ == text_.size()) return std::nullopt;
    return slice(fragmentStart_ + 1, text_.size());
}

bool NSURL::hasScheme(std::string_view name) const noexcept {
    return std::ranges::equal(scheme(), name, {}, [](char c) { return isLetter(c) ? c | 0x20 : c; });
}

}  // namespace kx
