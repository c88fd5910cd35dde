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
            std::int32_t blueGreen, redAlpha;
            std::memcpy(&blueGreen, mix.weights[c], 4);
            std::memcpy(&redAlpha, mix.weights[c] + 2, 4);
            weights_[c] = Lanes::lowPairs(Lanes::all(blueGreen), Lanes::all(redAlpha));
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

    template <bool kGrey>
    V pixels(V old) const {
        const V zero = Lanes::all(0);
        const V first = Lanes::lowBytes(old, zero), second = Lanes::highBytes(old, zero);
        const V colours = kGrey ? grey(first, second) : colour(first, second);
        const V alpha = Lanes::all(static_cast<std::int32_t>(0xFF000000));
        return Lanes::leastBytes(Lanes::both(colours, alpha),
                                 Lanes::both(spreadAlpha<Lanes>(old), Lanes::common(old, alpha)));
    }

    V channel(V first, V second, int c) const {
        return Lanes::rounded(
            Lanes::addNeighbours(Lanes::multiply(first, weights_[c]), Lanes::multiply(second, weights_[c])),
            bits_);
    }

    /// One value in all bytes of its pixel.
    V grey(V first, V second) const {
        const V values = channel(first, second, 0);
        const V words = Lanes::toWords(values, values), bytes = Lanes::toBytes(words, words);
        const V twice = Lanes::lowBytes(bytes, bytes);
        return Lanes::lowWords(twice, twice);
    }

    V colour(V first, V second) const {
        const V blue = channel(first, second, 0), green = channel(first, second, 1),
                red = channel(first, second, 2);
        const V planes = Lanes::toBytes(Lanes::toWords(blue, green), Lanes::toWords(red, red));
        const V pairs = Lanes::lowBytes(planes, Lanes::upperHalf(planes));
        return Lanes::lowBytes(pairs, Lanes::upperHalf(pairs));
    }

    V weights_[3];
    int bits_;
};

}  // namespace

}  // namespace kx
