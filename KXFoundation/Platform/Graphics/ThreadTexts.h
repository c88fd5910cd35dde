// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include <KXFoundation/Platform/Graphics/GlyphFont.h>
#include <KXFoundation/Platform/Graphics/LineKey.h>
#include <KXFoundation/Platform/Graphics/RecentCache.h>
#include <KXFoundation/Platform/Graphics/TextContext.h>
#include <KXFoundation/Platform/Graphics/TextKey.h>

namespace kx {

class CGMutablePath;
class LaidOutText;

inline constexpr std::size_t kLongText = 4096;  // bytes; of texts beyond that only the latest are remembered

/// What one thread remembers of the texts that it measured, drew and outlined with the fonts in use. Made
/// anew when the FontSource was replaced.
class ThreadTexts {
  public:
    [[nodiscard]] static const std::shared_ptr<ThreadTexts>& current();

    explicit ThreadTexts(std::shared_ptr<FontSource> source) : context(std::move(source)) {}

    /// The first of the fonts that the text engine takes for this one; none if there is no font at all.
    [[nodiscard]] std::shared_ptr<GlyphFont> glyphFont(const NSFont& font);
    [[nodiscard]] std::shared_ptr<GlyphFont> glyphFont(PangoFont* font);
    /// The glyph's outline from the left end of its baseline. Valid until the next call.
    [[nodiscard]] const CGMutablePath& outline(GlyphFont& font, std::uint32_t glyph);

    TextContext context;
    // Lines hold some KiB each, a measure about a hundred bytes, an outline some hundreds.
    RecentCache<TextKey, std::shared_ptr<const LaidOutText>, TextKeyHash> lines{128};
    RecentCache<TextKey, std::shared_ptr<const LaidOutText>, TextKeyHash> longLines{1};
    RecentCache<LineKey, std::shared_ptr<const TextLine>, LineKeyHash> styledLines{128};
    RecentCache<TextKey, TextMeasure, TextKeyHash> measures{2048};

  private:
    RecentCache<std::uint64_t, std::shared_ptr<GlyphFont>> fontsByIdentity_{32};
    RecentCache<PangoFont*, std::shared_ptr<GlyphFont>> fonts_{64};
    RecentCache<std::uint64_t, std::shared_ptr<const CGMutablePath>> outlines_{2048};
};

}  // namespace kx
