// SPDX-License-Identifier: MIT

#include <algorithm>

#include <glib.h>

#include <KXFoundation/Platform/Graphics/UsableText.h>

namespace kx {

std::size_t letterLimit(double pointSize, double room) noexcept {
    constexpr std::size_t kLongestText = 65'536;
    return std::min(kLongestText, static_cast<std::size_t>(std::max(room, 0.0) / pointSize));
}

namespace {

/// Fonts place each mark by all before it on the same letter, which is quadratic: 64 KiB of them took 16 s.
std::string withoutTowersOfMarks(const std::string& text) {
    constexpr int kHighest = 256;
    std::string lower;
    int marks = 0;
    const char* next = nullptr;
    for (const char* at = text.c_str(); *at; at = next) {
        next = g_utf8_next_char(at);
        marks = g_unichar_ismark(g_utf8_get_char(at)) ? marks + 1 : 0;
        if (marks <= kHighest) lower.append(at, next);
    }
    return lower;
}

}  // namespace

std::string usableText(std::string_view text, std::size_t limit) {
    std::string_view part = text.substr(0, limit);
    if (part.size() < text.size()) {
        while (!part.empty() && (static_cast<unsigned char>(text[part.size()]) & 0xC0) == 0x80)
            part.remove_suffix(1);
    }
    char* valid = g_utf8_make_valid(part.data(), static_cast<gssize>(part.size()));
    std::string answer = valid;
    g_free(valid);
    constexpr std::size_t kTooShortForOne = 256;
    return answer.size() <= kTooShortForOne ? answer : withoutTowersOfMarks(answer);
}

}  // namespace kx
