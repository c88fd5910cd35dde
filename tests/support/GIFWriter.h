// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Writes GIFs for tests, also ones that no sane program would write. Remembers where every part of the
/// structure begins, so that a test can break it there.
namespace kx::testing {

struct GIFWriterFrame {
    std::uint16_t left = 0, top = 0, width = 0, height = 0;
    std::vector<std::uint8_t> indices;  // row after row from the top; also if interlaced
    bool interlaced = false;
    /// None, with disposal 0 and no transparency: no control extension.
    std::optional<std::uint16_t> delayHundredths;
    std::uint8_t disposal = 0;  // the file's own number, 0 to 7
    std::optional<std::uint8_t> transparentIndex;
    std::vector<std::uint8_t> palette;  // a local one: red, green, blue; 2, 4, 8 ... 256 colours
};

class GIFWriter {
  public:
    enum class Packing {
        Literals,       // every index a code of its own, the dictionary cleared before it grows
        Strings,        // as usual; cleared when the dictionary is full
        DeferredClear,  // full dictionaries stay in use
    };

    /// `palette` may be empty. `depth`, 1 to 8, is the packed size of an index.
    GIFWriter(std::uint16_t width, std::uint16_t height, const std::vector<std::uint8_t>& palette,
              unsigned depth, Packing packing = Packing::Strings);

    GIFWriter& loopCount(std::uint16_t count, std::string_view application = "NETSCAPE2.0");
    GIFWriter& comment(std::string_view text);
    GIFWriter& frame(const GIFWriterFrame& frame);
    /// A frame whose packed data are these bytes.
    GIFWriter& frameOf(const GIFWriterFrame& frame, const std::vector<std::uint8_t>& packed);
    GIFWriter& trailer();

    [[nodiscard]] const std::vector<std::uint8_t>& bytes() const { return bytes_; }
    /// Where header, screen, palettes, extensions, descriptors, sub-blocks, terminators and trailer begin, in
    /// order.
    [[nodiscard]] const std::vector<std::size_t>& boundaries() const { return boundaries_; }

  private:
    void boundary() { boundaries_.push_back(bytes_.size()); }
    void put(std::initializer_list<unsigned> values);
    void word(unsigned value) { put({value & 0xFF, value >> 8}); }
    void text(std::string_view text);
    void append(const std::vector<std::uint8_t>& bytes);
    void control(const GIFWriterFrame& frame);
    void subBlocks(const std::vector<std::uint8_t>& data);

    std::vector<std::uint8_t> bytes_;
    std::vector<std::size_t> boundaries_;
    unsigned depth_;
    Packing packing_;
};

/// The codes of an LZW stream, packed as GIF does it.
class GIFCodeWriter {
  public:
    void code(unsigned code, unsigned size);
    [[nodiscard]] std::vector<std::uint8_t> take();

  private:
    std::vector<std::uint8_t> bytes_;
    std::uint32_t bits_ = 0;
    unsigned count_ = 0;
};

[[nodiscard]] std::vector<std::uint8_t> packGIF(const std::vector<std::uint8_t>& indices, unsigned depth,
                                                GIFWriter::Packing packing);

}  // namespace kx::testing
