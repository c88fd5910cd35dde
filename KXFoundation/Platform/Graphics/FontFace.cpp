// SPDX-License-Identifier: MIT

#include <optional>

#include <KXFoundation/Platform/Graphics/FontFace.h>

namespace kx {

namespace {

// Weight names as OpenType's OS/2 table and the common PostScript names spell them; longer ones before those
// that they end in.
constexpr struct {
    std::string_view word;
    int weight;
} kWeights[] = {
    {"ultralight", 200}, {"extralight", 200}, {"light", 300},     {"thin", 100},   {"regular", 400},
    {"normal", 400},     {"book", 400},       {"roman", 400},     {"medium", 500}, {"semibold", 600},
    {"demibold", 600},   {"ultrabold", 800},  {"extrabold", 800}, {"bold", 700},   {"demi", 600},
    {"heavy", 800},      {"black", 900},
};
constexpr std::string_view kSlants[] = {"italic", "oblique", "slanted"};

/// The first word for the weight.
std::string_view wordOf(int weight) {
    for (const auto& row : kWeights) {
        if (row.weight == weight) return row.word;
    }
    return "";
}

std::string capitalized(std::string_view word) {
    std::string text(word);
    if (!text.empty()) text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text;
}

bool takeEnd(std::string& text, std::string_view end) {
    if (!text.ends_with(end)) return false;
    text.resize(text.size() - end.size());
    return true;
}

bool takeSlant(std::string& style) {
    for (const std::string_view word : kSlants) {
        if (takeEnd(style, word)) return true;
    }
    return false;
}

std::optional<int> takeWeight(std::string& style) {
    for (const auto& [word, weight] : kWeights) {
        if (takeEnd(style, word)) return weight;
    }
    return std::nullopt;
}

/// Reads a style such as "SemiboldItalic"; false, and nothing changed, if it holds any other word.
bool readStyle(std::string_view text, FontFace& face) {
    std::string style = squashedFamily(text);
    if (style.empty()) return false;
    const bool italic = takeSlant(style);
    const std::optional<int> weight = takeWeight(style);
    if (!style.empty()) return false;
    face.italic = face.italic || italic;
    if (weight) face.weight = *weight;
    return true;
}

/// Cuts the last word off the family if it is a style word.
bool takeStyleWord(FontFace& face, char separator) {
    const std::size_t at = face.family.rfind(separator);
    if (at == std::string::npos || at == 0) return false;
    if (!readStyle(std::string_view(face.family).substr(at + 1), face)) return false;
    face.family.resize(at);
    return true;
}

}  // namespace

FontFace parseFontName(std::string_view name) {
    FontFace face{std::string(name)};
    if (takeStyleWord(face, '-')) return face;
    while (takeStyleWord(face, ' ')) {
    }
    return face;
}

std::string fontNameOf(const FontFace& face) {
    std::string style;
    if (face.weight != 400) style = capitalized(wordOf(face.weight));
    if (face.italic) style += capitalized(kSlants[0]);
    return style.empty() ? face.family : face.family + "-" + style;
}

std::string squashedFamily(std::string_view family) {
    std::string squashed;
    for (const char c : family) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 'A' && byte <= 'Z') {
            squashed.push_back(static_cast<char>(byte + 32));
        } else if ((byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') || byte >= 0x80) {
            squashed.push_back(c);
        }
    }
    return squashed;
}

}  // namespace kx
