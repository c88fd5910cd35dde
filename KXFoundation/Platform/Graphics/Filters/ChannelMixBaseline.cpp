// SPDX-License-Identifier: MIT

#if defined(__x86_64__)

#include <KXFoundation/Platform/Graphics/Filters/ChannelMixLoops.inl>

namespace kx {

void mixPixelsBaseline(const ChannelMix& mix, const std::uint32_t* from, std::size_t count,
                       std::uint32_t* to) {
    ChannelMixLoop<Lanes128>::run(mix, from, count, to);
}

}  // namespace kx

#endif
