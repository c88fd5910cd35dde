// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/TextLine.h>

namespace kx {

/// What a line is remembered by. Asked for by its pieces, so that a look-up copies nothing.
using LineQuery = std::span<const StyledText>;

struct LineKey {
    struct Piece {
        std::string text;
        std::uint64_t font;
        bool operator==(const Piece&) const = default;
    };
    std::vector<Piece> pieces;

    [[nodiscard]] static std::uint64_t fontOf(const StyledText& piece) noexcept {
        constexpr std::uint64_t kNone = ~std::uint64_t{0};
        return piece.font ? piece.font->identity() : kNone;
    }

    explicit LineKey(LineQuery query) {
        for (const StyledText& piece : query) pieces.push_back({std::string(piece.text), fontOf(piece)});
    }
    bool operator==(const LineKey&) const = default;
    bool operator==(const LineQuery& query) const {
        return std::ranges::equal(pieces, query, [](const Piece& mine, const StyledText& piece) {
            return mine.font == fontOf(piece) && mine.text == piece.text;
        });
    }
};

struct LineKeyHash {
    using is_transparent = void;
    // Not noexcept, for the reason that TextKeyHash gives.
    std::size_t operator()(const LineQuery& query) const {
        std::size_t hash = 0;
        for (const StyledText& piece : query) hash = mixed(hash, piece.text, LineKey::fontOf(piece));
        return hash;
    }
    std::size_t operator()(const LineKey& key) const {
        std::size_t hash = 0;
        for (const LineKey::Piece& piece : key.pieces) hash = mixed(hash, piece.text, piece.font);
        return hash;
    }

  private:
    static std::size_t mixed(std::size_t hash, std::string_view text, std::uint64_t font) {
        return ((hash * 31) + std::hash<std::string_view>{}(text)) * 31 + font;
    }
};

}  // namespace kx
