// SPDX-License-Identifier: MIT

#include "support/GIFWriter.h"

#include <algorithm>
#include <bit>
#include <map>
#include <utility>

namespace kx::testing {

namespace {

unsigned paletteFlags(const std::vector<std::uint8_t>& palette) {
    if (palette.empty()) return 0;
    return 0x80U | (static_cast<unsigned>(std::bit_width(palette.size() / 3)) - 2);
}

std::vector<std::uint8_t> inFileOrder(const GIFWriterFrame& frame) {
    if (!frame.interlaced) return frame.indices;
    std::vector<std::uint8_t> rows;
    for (const auto& [start, step] : {std::pair(0, 8), {4, 8}, {2, 4}, {1, 2}})
        for (int y = start; y < frame.height; y += step)
            rows.insert(rows.end(), frame.indices.begin() + y * frame.width,
                        frame.indices.begin() + (y + 1) * frame.width);
    return rows;
}

// The encoder's side of LZW: it may use an entry one code earlier than the decoder has it.
class Dictionary {
  public:
    explicit Dictionary(unsigned depth) : depth_(depth) { clear(); }

    [[nodiscard]] unsigned clearCode() const { return 1U << depth_; }
    [[nodiscard]] unsigned size() const { return size_; }
    [[nodiscard]] bool full() const { return next_ == 4096; }

    void clear() {
        strings_.clear();
        next_ = clearCode() + 2;
        size_ = depth_ + 1;
    }
    [[nodiscard]] const unsigned* find(unsigned prefix, std::uint8_t suffix) const {
        const auto at = strings_.find({prefix, suffix});
        return at == strings_.end() ? nullptr : &at->second;
    }
    void add(unsigned prefix, std::uint8_t suffix) {
        if (full()) return;
        if (next_ == 1U << size_) ++size_;
        strings_[{prefix, suffix}] = next_++;
    }
    // After the last code nothing is added, but the decoder's dictionary still grows by the string before it.
    void settle() {
        if (!full() && next_ == 1U << size_) ++size_;
    }

  private:
    unsigned depth_, next_ = 0, size_ = 0;
    std::map<std::pair<unsigned, std::uint8_t>, unsigned> strings_;
};

}  // namespace

void GIFCodeWriter::code(unsigned code, unsigned size) {
    bits_ |= code << count_;
    for (count_ += size; count_ >= 8; count_ -= 8, bits_ >>= 8)
        bytes_.push_back(static_cast<std::uint8_t>(bits_));
}

std::vector<std::uint8_t> GIFCodeWriter::take() {
    if (count_ > 0) bytes_.push_back(static_cast<std::uint8_t>(bits_));
    bits_ = count_ = 0;
    return std::exchange(bytes_, {});
}

std::vector<std::uint8_t> packGIF(const std::vector<std::uint8_t>& indices, unsigned depth,
                                  GIFWriter::Packing packing) {
    Dictionary dictionary(depth);
    GIFCodeWriter out;
    out.code(dictionary.clearCode(), dictionary.size());
    std::optional<unsigned> prefix;
    unsigned sinceClear = 0;
    const auto emit = [&] {
        out.code(*prefix, dictionary.size());
        ++sinceClear;
    };
    const auto clear = [&] {
        out.code(dictionary.clearCode(), dictionary.size());
        dictionary.clear();
        sinceClear = 0;
    };
    for (const std::uint8_t index : indices) {
        if (!prefix) {
            prefix = index;
            continue;
        }
        const unsigned* longer = dictionary.find(*prefix, index);
        if (longer && packing != GIFWriter::Packing::Literals) {
            prefix = *longer;
            continue;
        }
        emit();
        dictionary.add(*prefix, index);
        const bool literals =
            packing == GIFWriter::Packing::Literals && sinceClear == dictionary.clearCode() - 1;
        const bool strings = packing == GIFWriter::Packing::Strings && dictionary.full();
        if (literals || strings) clear();
        prefix = index;
    }
    if (prefix) emit();
    dictionary.settle();
    out.code(dictionary.clearCode() + 1, dictionary.size());
    return out.take();
}

GIFWriter::GIFWriter(std::uint16_t width, std::uint16_t height, const std::vector<std::uint8_t>& palette,
                     unsigned depth, Packing packing)
    : depth_(depth), packing_(packing) {
    boundary();
    text("GIF89a");
    boundary();
    word(width);
    word(height);
    put({paletteFlags(palette), 0, 0});
    boundary();
    append(palette);
}

GIFWriter& GIFWriter::loopCount(std::uint16_t count, std::string_view application) {
    boundary();
    put({0x21, 0xFF, static_cast<unsigned>(application.size())});
    text(application);
    subBlocks({1, static_cast<std::uint8_t>(count), static_cast<std::uint8_t>(count >> 8)});
    return *this;
}

GIFWriter& GIFWriter::comment(std::string_view comment) {
    boundary();
    put({0x21, 0xFE});
    subBlocks({comment.begin(), comment.end()});
    return *this;
}

GIFWriter& GIFWriter::frame(const GIFWriterFrame& frame) {
    return frameOf(frame, packGIF(inFileOrder(frame), depth_, packing_));
}

GIFWriter& GIFWriter::frameOf(const GIFWriterFrame& frame, const std::vector<std::uint8_t>& packed) {
    control(frame);
    boundary();
    put({0x2C});
    for (const std::uint16_t value : {frame.left, frame.top, frame.width, frame.height}) word(value);
    put({paletteFlags(frame.palette) | (frame.interlaced ? 0x40U : 0U)});
    boundary();
    append(frame.palette);
    boundary();
    put({depth_});
    subBlocks(packed);
    return *this;
}

void GIFWriter::control(const GIFWriterFrame& frame) {
    if (!frame.delayHundredths && frame.disposal == 0 && !frame.transparentIndex) return;
    boundary();
    put({0x21, 0xF9, 4, unsigned{frame.disposal} << 2 | (frame.transparentIndex ? 1U : 0U)});
    word(frame.delayHundredths.value_or(0));
    put({frame.transparentIndex.value_or(0U)});
    boundary();
    put({0});
}

GIFWriter& GIFWriter::trailer() {
    boundary();
    put({0x3B});
    return *this;
}

void GIFWriter::subBlocks(const std::vector<std::uint8_t>& data) {
    for (std::size_t at = 0; at < data.size(); at += 255) {
        const std::size_t length = std::min<std::size_t>(255, data.size() - at);
        boundary();
        put({static_cast<unsigned>(length)});
        const auto from = data.begin() + static_cast<std::ptrdiff_t>(at);
        bytes_.insert(bytes_.end(), from, from + static_cast<std::ptrdiff_t>(length));
    }
    boundary();
    put({0});
}

void GIFWriter::put(std::initializer_list<unsigned> values) {
    for (const unsigned value : values) bytes_.push_back(static_cast<std::uint8_t>(value));
}

void GIFWriter::text(std::string_view text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
}

void GIFWriter::append(const std::vector<std::uint8_t>& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

}  // namespace kx::testing
