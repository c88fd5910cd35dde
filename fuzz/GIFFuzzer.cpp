#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include <KXFoundation/Platform/Graphics/GIF/GIFAheadDecoder.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>

// Any bytes give frames or an error; a picture is premultiplied and nothing in it was left unwritten.
namespace {

constexpr kx::GIFLimits kLimits{.pixels = 1 << 20, .frames = 1000};

void require(bool holds) {
    if (!holds) std::abort();
}

// Reads every pixel, so that MemorySanitizer sees one that nobody wrote.
void requireClearOrOpaque(const std::vector<std::uint8_t>& canvas) {
    for (std::size_t i = 0; i < canvas.size(); i += 4)
        require(canvas[i + 3] == 0xFF || (canvas[i] | canvas[i + 1] | canvas[i + 2] | canvas[i + 3]) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto decoder = kx::GIFDecoder::open({data, size}, kLimits);
    if (!decoder) return 0;
    const auto contents = std::make_shared<const kx::GIFContents>(decoder->contents());
    const std::size_t stride = std::size_t{decoder->width()} * 4, bytes = stride * decoder->height();
    const auto canvas = std::unique_ptr<std::uint8_t[]>(new std::uint8_t[bytes]);

    std::size_t frames = 0;
    for (auto frame = decoder->next({canvas.get(), stride}); frame && *frame && frames < kLimits.frames;
         frame = decoder->next({canvas.get(), stride}))
        ++frames;
    require(frames == contents->frames.size());
    if (frames == 0) return 0;
    const std::vector<std::uint8_t> last(canvas.get(), canvas.get() + bytes);
    requireClearOrOpaque(last);

    std::vector<std::uint8_t> again(bytes, 0x5A);
    kx::GIFAheadDecoder ahead(contents, decoder->width(), decoder->height(), kLimits);
    ahead.startAt(ahead.startFor(frames - 1));
    while (ahead.next({again.data(), stride})) continue;
    require(again == last);
    return 0;
}
