// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Graphics/FontSource.h>

typedef struct _PangoFontMap PangoFontMap;
typedef struct _PangoContext PangoContext;

namespace kx {

/// The calling thread's font map over the fonts in use, and a context for each base direction. Pango's
/// objects belong to one thread, so there is one set per thread; it is made anew when the FontSource was
/// replaced.
class TextContext {
  public:
    explicit TextContext(std::shared_ptr<FontSource> source);
    ~TextContext();
    TextContext(const TextContext&) = delete;
    TextContext& operator=(const TextContext&) = delete;

    [[nodiscard]] PangoContext* leftToRight() const noexcept { return leftToRight_; }
    [[nodiscard]] PangoContext* rightToLeft() const noexcept { return rightToLeft_; }
    [[nodiscard]] const FontSource* source() const noexcept { return source_.get(); }

  private:
    std::shared_ptr<FontSource> source_;
    PangoFontMap* fontMap_;
    PangoContext* leftToRight_;
    PangoContext* rightToLeft_;
};

}  // namespace kx
