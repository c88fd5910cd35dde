// SPDX-License-Identifier: MIT

// Compiled for machines that have AVX2, and called on those only.
#if defined(__x86_64__)

#include <KXFoundation/Platform/Graphics/Filters/ChannelMixLoops.inl>

namespace kx {

void mixPixelsWide(const ChannelMix& mix, const std::uint32_t* from, std::size_t count, std::uint32_t* to) {
    ChannelMixLoop<Lanes256>::run(mix, from, count, to);
}

}  // namespace kx

#endif
