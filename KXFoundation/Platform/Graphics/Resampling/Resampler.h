// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Graphics/VectorSpeed.h>
#include <KXFoundation/Platform/Runtime/Export.h>

/// Changing the size of a bitmap. Works on premultiplied pixels, so a transparent surrounding leaves no
/// fringe, and every source pixel counts however large the reduction, so fine patterns turn into their mean
/// and not into moire.
namespace kx {

enum class ResampleFilter : std::uint8_t {
    /// The mean of what a pixel covers: the fastest, never beyond the source's range, a little soft. Enlarged
    /// pixels stay squares.
    Area,
    /// A windowed sinc over three lobes each way (C. E. Duchon, "Lanczos Filtering in One and Two
    /// Dimensions",
    /// 1979). The default: it keeps detail that the mean blurs, and holds back far more of what is too fine
    /// for
    /// the answer and would show as patterns. Beside hard edges it overshoots; the result is held to what a
    /// premultiplied pixel can be.
    Lanczos3,
};

enum class ResampleLight : std::uint8_t {
    Encoded,  ///< mixes the values as they are stored (sRGB), as drawing and other programs do
    Linear,   ///< mixes light: fine patterns keep their brightness; several times slower
};

struct ResampleOptions {
    ResampleFilter filter = ResampleFilter::Lanczos3;
    ResampleLight light = ResampleLight::Encoded;
    VectorSpeed speed = VectorSpeed::Best;
};

/// Fills the bitmap `to` with the top left part of `from` drawn `extent` pixels large; the whole of it where
/// the extent is the size of `to`. An extent may be fractional; it ends in the last row and column of `to` or
/// beyond them, else nothing happens, nor where it is not finite. The bitmaps are two. Any thread.
KX_EXPORT void resample(const NSBitmapImageRep& from, NSBitmapImageRep& to, NSSize extent,
                        ResampleOptions options = {});

/// The whole bitmap in another size; none if there can be no bitmap of that size.
[[nodiscard]] KX_EXPORT std::shared_ptr<NSBitmapImageRep> resampled(const NSBitmapImageRep& from,
                                                                    std::uint32_t wide, std::uint32_t high,
                                                                    ResampleOptions options = {});

}  // namespace kx
