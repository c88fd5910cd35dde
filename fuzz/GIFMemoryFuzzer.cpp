// SPDX-License-Identifier: MIT

#include <cstddef>
#include <cstdint>
#include <memory>

#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>

#include "GIFChecks.h"

// Under MemorySanitizer, with nothing but the decoder's own files: no step depends on memory that nobody
// wrote, and neither does a pixel of any frame.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto decoder = kx::GIFDecoder::open({data, size}, fuzz::kGIFLimits);
    if (!decoder) return 0;
    const std::size_t stride = std::size_t{decoder->width()} * 4, bytes = stride * decoder->height();
    const std::unique_ptr<std::uint8_t[]> canvas(new std::uint8_t[bytes]), next(new std::uint8_t[bytes]);
    const kx::GIFPixels pixels{canvas.get(), stride}, apart{next.get(), stride};

    for (std::size_t frames = 0; frames < fuzz::kGIFLimits.frames; ++frames) {
        const auto frame = decoder->next(pixels);
        if (!frame || !*frame) break;
        fuzz::requireClearOrOpaque({canvas.get(), bytes});
    }
    decoder->rewind();
    for (std::size_t frames = 0; frames < 2; ++frames) {
        const auto frame = frames == 0 ? decoder->next(pixels) : decoder->next(apart, pixels);
        if (!frame || !*frame) break;
        fuzz::requireClearOrOpaque({frames == 0 ? canvas.get() : next.get(), bytes});
    }
    return 0;
}
