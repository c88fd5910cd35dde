// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/UnicodeText.h>
#include <KXFoundation/Platform/Services/Photos/PhotoFileName.h>

namespace kx {

namespace {

constexpr std::size_t kLongestName = 200;  // file systems have 255; a number may come behind
constexpr std::size_t kLongestExtension = 16;

bool isUnsafe(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == U'/' || c == U'\\' || c == 0x2028 || c == 0x2029;
}

/// Where the extension begins, its dot included; the end if there is none.
std::size_t extensionStart(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    const bool isOne = dot != std::string_view::npos && dot > 0 && name.size() - dot <= kLongestExtension;
    return isOne ? dot : name.size();
}

/// At most so many bytes, without a character cut in two.
std::string_view cut(std::string_view text, std::size_t most) {
    if (text.size() <= most) return text;
    while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) --most;
    return text.substr(0, most);
}

std::string_view withoutBlankEnds(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

}  // namespace

std::string photoFileName(std::string_view text) {
    std::string name;
    while (!text.empty() && name.size() < 16 * kLongestName) {
        const char32_t c = takeCodePoint(text);
        appendCodePoint(name, isUnsafe(c) ? U'_' : c);
    }
    name = withoutBlankEnds(name);
    if (name.empty()) return "Untitled";
    if (name.front() == '.') name.front() = '_';
    const std::size_t start = extensionStart(name);
    const std::string extension = name.substr(start);
    return std::string(cut(std::string_view(name).substr(0, start), kLongestName - extension.size())) +
           extension;
}

std::string numberedFileName(std::string_view name, unsigned number) {
    if (number == 1) return std::string(name);
    const std::size_t start = extensionStart(name);
    return std::string(name.substr(0, start)) + " " + std::to_string(number) +
           std::string(name.substr(start));
}

}  // namespace kx
