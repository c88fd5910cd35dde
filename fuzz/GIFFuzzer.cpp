// SPDX-License-Identifier: MIT

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <KXFoundation/Platform/Graphics/GIF/GIFAheadDecoder.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>

#include "GIFChecks.h"

// Any bytes give frames or an error; a picture is premultiplied, and the same however it is come by.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto decoder = kx::GIFDecoder::open({data, size}, fuzz::kGIFLimits);
    if (!decoder) return 0;
    const auto contents = std::make_shared<const kx::GIFContents>(decoder->contents());
    const std::size_t stride = std::size_t{decoder->width()} * 4, bytes = stride * decoder->height();
    const auto canvas = std::unique_ptr<std::uint8_t[]>(new std::uint8_t[bytes]);

    std::size_t frames = 0;
    for (auto frame = decoder->next({canvas.get(), stride});
         frame && *frame && frames < fuzz::kGIFLimits.frames; frame = decoder->next({canvas.get(), stride}))
        ++frames;
    fuzz::require(frames == contents->frames.size());
    if (frames == 0) return 0;
    const std::vector<std::uint8_t> last(canvas.get(), canvas.get() + bytes);
    fuzz::requireClearOrOpaque(last);

    std::vector<std::uint8_t> again(bytes, 0x5A);
    kx::GIFAheadDecoder ahead(contents, decoder->width(), decoder->height(), fuzz::kGIFLimits);
    ahead.startAt(ahead.startFor(frames - 1));
    while (ahead.next({again.data(), stride})) continue;
    fuzz::require(again == last);
    return 0;
}
