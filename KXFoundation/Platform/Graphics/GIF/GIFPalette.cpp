// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstring>

#include <KXFoundation/Platform/Graphics/GIF/GIFPalette.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFWidePalette.h>

namespace kx {

namespace {

constexpr std::size_t kStep = 8;

std::uint64_t load8(const std::uint8_t* from) noexcept {
    std::uint64_t bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

void store(std::uint8_t* pixels, std::size_t at, std::uint32_t pixel) noexcept {
    std::memcpy(pixels + at * 4, &pixel, sizeof pixel);
}

}  // namespace

struct GIFPalette::Plain {
    static void all(const GIFPalette& palette, std::uint8_t* pixels,
                    std::span<const std::uint8_t> indices) noexcept {
        std::size_t i = 0;
        for (; i + kStep <= indices.size(); i += kStep) {
            std::uint64_t eight = load8(&indices[i]);
            for (std::size_t k = 0; k < kStep; ++k, eight >>= 8)
                store(pixels, i + k, palette.colours_[eight & 0xFF]);
        }
        for (; i < indices.size(); ++i) store(pixels, i, palette.colours_[indices[i]]);
    }

    // Cropped frames are mostly runs of transparent indices, so eight are passed at once where possible.
    static void over(const GIFPalette& palette, std::uint8_t* pixels, std::span<const std::uint8_t> indices,
                     std::uint8_t transparent) noexcept {
        const std::uint64_t nothing = 0x0101010101010101 * std::uint64_t{transparent};
        std::size_t i = 0;
        for (; i + kStep <= indices.size(); i += kStep) {
            if (load8(&indices[i]) == nothing) continue;
            for (std::size_t k = i; k < i + kStep; ++k)
                if (indices[k] != transparent) store(pixels, k, palette.colours_[indices[k]]);
        }
        for (; i < indices.size(); ++i)
            if (indices[i] != transparent) store(pixels, i, palette.colours_[indices[i]]);
    }
};

struct GIFPalette::Wide {
    static void all(const GIFPalette& palette, std::uint8_t* pixels,
                    std::span<const std::uint8_t> indices) noexcept {
        GIFWidePalette::paint(palette.channels_, pixels, indices);
    }
    static void over(const GIFPalette& palette, std::uint8_t* pixels, std::span<const std::uint8_t> indices,
                     std::uint8_t transparent) noexcept {
        GIFWidePalette::paintOver(palette.channels_, pixels, indices, transparent);
    }
};

GIFPalette::GIFPalette(VectorSpeed speed) noexcept {
    const bool wide = speed == VectorSpeed::Best && GIFWidePalette::available();
    paintAll_ = wide ? &Wide::all : &Plain::all;
    paintOver_ = wide ? &Wide::over : &Plain::over;
    colours_.fill(0xFF000000);
    for (auto& channel : channels_) channel.fill(0);
}

void GIFPalette::use(std::span<const std::uint8_t> rgb) noexcept {
    if (rgb.data() == source_.data() && rgb.size() == source_.size()) return;
    source_ = rgb;
    const std::size_t size = std::min(rgb.size() / 3, colours_.size());
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint8_t red = rgb[3 * i], green = rgb[3 * i + 1], blue = rgb[3 * i + 2];
        colours_[i] = 0xFF000000 | std::uint32_t{red} << 16 | std::uint32_t{green} << 8 | blue;
        channels_[0][i] = blue;
        channels_[1][i] = green;
        channels_[2][i] = red;
    }
    std::fill(colours_.begin() + static_cast<std::ptrdiff_t>(size), colours_.end(), 0xFF000000);
    for (auto& channel : channels_)
        std::fill(channel.begin() + static_cast<std::ptrdiff_t>(size), channel.end(), std::uint8_t{0});
}

}  // namespace kx
