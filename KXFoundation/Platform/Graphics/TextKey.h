// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>

namespace kx {

/// What a laid out text or its measure is remembered by. Asked for as a view, so that a look-up copies
/// nothing.
struct TextQuery {
    std::string_view text;
    std::uint64_t font;  ///< NSFont::identity()
    const TextFlow& flow;
};

struct TextKey {
    std::string text;
    std::uint64_t font;
    TextFlow flow;

    explicit TextKey(const TextQuery& query) : text(query.text), font(query.font), flow(query.flow) {}
    bool operator==(const TextKey&) const = default;
    bool operator==(const TextQuery& query) const {
        return font == query.font && text == query.text && flow == query.flow;
    }
};

struct TextKeyHash {
    using is_transparent = void;
    // Not noexcept: the standard library's tables then keep each entry's hash instead of computing it again
    // for every neighbour that a look-up meets.
    std::size_t operator()(const TextQuery& key) const {
        const std::size_t text = std::hash<std::string_view>{}(key.text);
        const std::size_t width = std::hash<double>{}(key.flow.width);
        return (text * 31 + key.font) * 31 + width;
    }
    std::size_t operator()(const TextKey& key) const {
        return (*this)(TextQuery{key.text, key.font, key.flow});
    }
};

}  // namespace kx
