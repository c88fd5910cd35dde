// SPDX-License-Identifier: MIT

extern "C" {
#include <libswscale/swscale.h>
}

#include "picture_peers.h"

namespace kx::peers {

void resizeWithSwscale(const Pixels& from, const Pixels& to) {
    constexpr int kFlags = SWS_LANCZOS | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP | SWS_ACCURATE_RND;
    SwsContext* const context = sws_getContext(from.wide, from.high, AV_PIX_FMT_RGBA, to.wide, to.high,
                                               AV_PIX_FMT_RGBA, kFlags, nullptr, nullptr, nullptr);
    const std::uint8_t* const source[4] = {from.bytes};
    std::uint8_t* const target[4] = {to.bytes};
    const int sourceRow[4] = {from.wide * 4}, targetRow[4] = {to.wide * 4};
    sws_scale(context, source, sourceRow, 0, from.high, target, targetRow);
    sws_freeContext(context);
}

}  // namespace kx::peers
