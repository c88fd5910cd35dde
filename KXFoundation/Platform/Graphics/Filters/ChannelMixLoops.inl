// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Graphics/Filters/ChannelMix.h>
#include <KXFoundation/Platform/Graphics/VectorLanes.inl>

/// mixPixels over registers of any width; see VectorLanes.inl for what a file that includes this must heed.
namespace kx {

namespace {

template <class Lanes>
class ChannelMixLoop {
    using V = typename Lanes::Vector;
    static constexpr std::size_t kStep = Lanes::kBytes / 4;  // pixels

  public:
    explicit ChannelMixLoop(const ChannelMix& mix) : bits_(mix.bits) {
        for (int c = 0; c < 3; ++c) {
            const std::int16_t(&weights)[4] = mix.weights[c];
            even_[c] = Lanes::all(pair(weights[0], weights[2]));
            odd_[c] = Lanes::all(pair(weights[1], weights[3]));
        }
    }

    static void run(const ChannelMix& mix, const std::uint32_t* from, std::size_t count, std::uint32_t* to) {
        const ChannelMixLoop loop(mix);
        return mix.isGrey ? loop.template all<true>(mix, from, count, to)
                          : loop.template all<false>(mix, from, count, to);
    }

  private:
    /// More than the caches hold anyway: what is written goes past them, or it would be read first.
    static constexpr std::size_t kStreamedPixels = std::size_t{1} << 20;

    template <bool kGrey>
    void all(const ChannelMix& mix, const std::uint32_t* from, std::size_t count, std::uint32_t* to) const {
        std::size_t i = 0;
        if (count >= kStreamedPixels) {
            i = (0 - reinterpret_cast<std::uintptr_t>(to) / 4) % kStep;
            mixPixelsPlain(mix, from, i, to);
            for (; i + kStep <= count; i += kStep)
                Lanes::stream(to + i, pixels<kGrey>(Lanes::load(from + i)));
            Lanes::finishStreaming();
        } else {
            for (; i + kStep <= count; i += kStep) Lanes::store(to + i, pixels<kGrey>(Lanes::load(from + i)));
        }
        mixPixelsPlain(mix, from + i, count - i, to + i);
    }

    static std::int32_t pair(std::int16_t low, std::int16_t high) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint16_t>(high)) << 16 |
                                         static_cast<std::uint16_t>(low));
    }

    static V alphaOf(V pixels) {
        return Lanes::common(pixels, Lanes::all(static_cast<std::int32_t>(0xFF000000)));
    }

    template <bool kGrey>
    V pixels(V old) const {
        return kGrey ? Lanes::greyPixels(channel(old, 0), old, alphaOf(old)) : colour(old);
    }

    /// One value for each pixel. A pixel's bytes at even places are blue and red, at odd ones green and
    /// alpha.
    V channel(V old, int c) const {
        const V even = Lanes::common(old, Lanes::all(0x00FF00FF)), odd = Lanes::wordsShiftedRight(old, 8);
        return Lanes::rounded(Lanes::add(Lanes::multiply(even, even_[c]), Lanes::multiply(odd, odd_[c])),
                              bits_);
    }

    V colour(V old) const {
        const V blue = channel(old, 0), green = channel(old, 1), red = channel(old, 2);
        const V planes = Lanes::toBytes(Lanes::toWords(blue, green), Lanes::toWords(red, red));
        const V pairs = Lanes::lowBytes(planes, Lanes::upperHalf(planes));
        return Lanes::heldToAlpha(Lanes::lowBytes(pairs, Lanes::upperHalf(pairs)), old, alphaOf(old));
    }

    V even_[3], odd_[3];
    int bits_;
};

}  // namespace

}  // namespace kx
