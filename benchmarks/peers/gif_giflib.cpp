// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstring>

#include <gif_lib.h>

#include "gif_peers.h"

// giflib unpacks lines; the compositing is what an application has to write around it.
namespace kx::peers {

namespace {

struct Source {
    std::span<const std::uint8_t> left;
};

int readSome(GifFileType* gif, GifByteType* to, int wanted) {
    auto* source = static_cast<Source*>(gif->UserData);
    const std::size_t given = std::min(static_cast<std::size_t>(wanted), source->left.size());
    std::memcpy(to, source->left.data(), given);
    source->left = source->left.subspan(given);
    return static_cast<int>(given);
}

class Compositor {
  public:
    Compositor(GifFileType* gif, std::vector<std::uint8_t>& scratch)
        : gif_(gif), canvas_(scratch), width_(gif->SWidth), height_(gif->SHeight), line_(65536) {
        canvas_.assign(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_) * 4, 0);
    }

    int run(const GIFSink& sink) {
        int frames = 0;
        for (GifRecordType type; DGifGetRecordType(gif_, &type) == GIF_OK && type != TERMINATE_RECORD_TYPE;) {
            if (type == EXTENSION_RECORD_TYPE) {
                if (!readExtension()) break;
                continue;
            }
            if (type != IMAGE_DESC_RECORD_TYPE || DGifGetImageDesc(gif_) != GIF_OK) break;
            if (control_.DisposalMode == DISPOSE_PREVIOUS) saved_ = canvas_;
            paintFrame();
            ++frames;
            if (!sink({static_cast<std::uint32_t>(width_), static_cast<std::uint32_t>(height_), canvas_}))
                break;
            dispose();
            control_ = kNoControl;
        }
        return frames;
    }

  private:
    static constexpr GraphicsControlBlock kNoControl{DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};

    bool readExtension() {
        int code = 0;
        GifByteType* block = nullptr;
        if (DGifGetExtension(gif_, &code, &block) != GIF_OK) return false;
        if (code == GRAPHICS_EXT_FUNC_CODE && block) DGifExtensionToGCB(block[0], block + 1, &control_);
        while (block)
            if (DGifGetExtensionNext(gif_, &block) != GIF_OK) return false;
        return true;
    }

    void skipData() {
        int size = 0;
        GifByteType* block = nullptr;
        if (DGifGetCode(gif_, &size, &block) != GIF_OK) return;
        while (block)
            if (DGifGetCodeNext(gif_, &block) != GIF_OK) return;
    }

    void loadColours() {
        const GifImageDesc& frame = gif_->Image;
        const ColorMapObject* map = frame.ColorMap ? frame.ColorMap : gif_->SColorMap;
        std::fill(std::begin(colours_), std::end(colours_), 0xFF000000U);
        for (int i = 0; map && i < map->ColorCount; ++i) {
            const GifColorType& c = map->Colors[i];
            colours_[i] = 0xFF000000U | std::uint32_t{c.Red} << 16 | std::uint32_t{c.Green} << 8 | c.Blue;
        }
    }

    void paintFrame() {
        static constexpr int kStart[] = {0, 4, 2, 1}, kStep[] = {8, 8, 4, 2};
        const GifImageDesc& frame = gif_->Image;
        if (frame.Width == 0 || frame.Height == 0) return skipData();
        loadColours();
        for (int pass = 0; pass < (frame.Interlace ? 4 : 1); ++pass)
            for (int y = frame.Interlace ? kStart[pass] : 0; y < frame.Height;
                 y += frame.Interlace ? kStep[pass] : 1) {
                if (DGifGetLine(gif_, line_.data(), frame.Width) != GIF_OK) return;
                if (frame.Top + y < height_) paintLine(frame.Left, frame.Top + y, frame.Width);
            }
    }

    void paintLine(int left, int y, int width) {
        std::uint8_t* row = rowAt(y);
        for (int x = left; x < std::min(left + width, width_); ++x) {
            const GifPixelType index = line_[static_cast<std::size_t>(x - left)];
            if (index != control_.TransparentColor) std::memcpy(row + x * 4, &colours_[index], 4);
        }
    }

    void dispose() {
        if (control_.DisposalMode == DISPOSE_PREVIOUS) canvas_ = saved_;
        if (control_.DisposalMode != DISPOSE_BACKGROUND) return;
        const GifImageDesc& frame = gif_->Image;
        const int width = std::min(frame.Left + frame.Width, width_) - frame.Left;
        for (int y = frame.Top; width > 0 && y < std::min(frame.Top + frame.Height, height_); ++y)
            std::memset(rowAt(y) + frame.Left * 4, 0, static_cast<std::size_t>(width) * 4);
    }

    std::uint8_t* rowAt(int y) {
        return canvas_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) * 4;
    }

    GifFileType* gif_;
    std::vector<std::uint8_t>& canvas_;
    std::vector<std::uint8_t> saved_;
    int width_, height_;
    std::vector<GifPixelType> line_;
    std::uint32_t colours_[256] = {};
    GraphicsControlBlock control_ = kNoControl;
};

}  // namespace

int gifWithGiflib(std::span<const std::uint8_t> file, std::vector<std::uint8_t>& scratch,
                  const GIFSink& sink) {
    Source source{file};
    int error = 0;
    GifFileType* gif = DGifOpen(&source, readSome, &error);
    if (!gif) return -1;
    const int frames = Compositor(gif, scratch).run(sink);
    DGifCloseFile(gif, &error);
    return frames;
}

}  // namespace kx::peers
