// SPDX-License-Identifier: MIT

#include <algorithm>
#include <string_view>
#include <utility>

#include <KXFoundation/Platform/Graphics/GIF/GIFReader.h>

/// The grammar, in the format's own order ("Graphics Interchange Format, Version 89a", 1990):
///
///     file      = header screen [global palette] { extension | frame } trailer
///     frame     = descriptor [local palette] code-size sub-blocks
///     extension = 0x21 label sub-blocks
///     sub-blocks= { length (1..255) bytes } 0
///
/// Every number is little-endian. A file may end anywhere; what stands before the end counts.
namespace kx {

namespace {

constexpr std::uint8_t kExtension = 0x21, kFrame = 0x2C, kTrailer = 0x3B;
constexpr std::uint8_t kGraphicControl = 0xF9, kApplication = 0xFF;
constexpr std::size_t kHeaderSize = 13, kDescriptorSize = 9, kControlSize = 4, kIdentifierSize = 11;
constexpr std::uint64_t kMaxPixels = std::uint64_t{1} << 31;

bool startsWith(std::span<const std::uint8_t> bytes, std::string_view text) noexcept {
    return bytes.size() >= text.size() &&
           std::equal(text.begin(), text.end(), bytes.begin(),
                      [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

bool saysHowOftenToLoop(std::span<const std::uint8_t> identifier) noexcept {
    return identifier.size() == kIdentifierSize &&
           (startsWith(identifier, "NETSCAPE2.0") || startsWith(identifier, "ANIMEXTS1.0"));
}

GIFDisposal disposalOf(std::uint8_t flags) noexcept {
    switch (flags >> 2 & 7) {
        case 2:
            return GIFDisposal::Background;
        case 3:
            return GIFDisposal::Previous;
        default:
            return GIFDisposal::Keep;  // 0: unspecified, 1: keep, the rest: reserved
    }
}

Error failure(ErrorKind kind, const char* where) {
    return {kind, 0, where};
}

}  // namespace

Result<GIFReader> GIFReader::open(std::span<const std::uint8_t> bytes, GIFLimits limits) {
    limits.pixels = std::min(limits.pixels, kMaxPixels);
    GIFReader reader(bytes, limits);
    if (Result<void> header = reader.readHeader(); !header) return std::move(header).error();
    return reader;
}

Result<void> GIFReader::readHeader() {
    const std::string_view signature = "GIF8?a";
    for (std::size_t i = 0; i < std::min(bytes_.size(), signature.size()); ++i) {
        const bool fits = i == 4 ? bytes_[i] == '7' || bytes_[i] == '9'
                                 : bytes_[i] == static_cast<std::uint8_t>(signature[i]);
        if (!fits) return failure(ErrorKind::Corrupt, "GIF signature");
    }
    if (bytes_.size() < kHeaderSize) return failure(ErrorKind::Ended, "GIF header");

    width_ = word(6);
    height_ = word(8);
    if (std::uint64_t{width_} * height_ > limits_.pixels) return failure(ErrorKind::TooLarge, "GIF canvas");
    if (width_ == 0 || height_ == 0) return failure(ErrorKind::Corrupt, "GIF canvas");

    const std::uint8_t flags = bytes_[10];
    at_ = kHeaderSize;
    Result<std::span<const std::uint8_t>> palette = readPalette(flags);
    if (!palette) return std::move(palette).error();
    globalPalette_ = *palette;
    firstBlock_ = at_;
    return {};
}

Result<std::span<const std::uint8_t>> GIFReader::readPalette(std::uint8_t flags) {
    if ((flags & 0x80) == 0) return std::span<const std::uint8_t>();
    const std::size_t size = std::size_t{3} << ((flags & 7) + 1);
    if (left() < size) return failure(ErrorKind::Ended, "GIF palette");
    return bytes_.subspan(std::exchange(at_, at_ + size), size);
}

Result<std::optional<GIFFrame>> GIFReader::next() {
    if (std::exchange(insideFrame_, false)) skipSubBlocks();
    while (left() > 0) {
        switch (bytes_[at_]) {
            case kExtension:
                readExtension();
                break;
            case kFrame:
                return readFrame();
            case kTrailer:
                return std::optional<GIFFrame>();
            case 0:
                ++at_;
                break;  // a surplus terminator; some writers leave one
            default:
                return failure(ErrorKind::Corrupt, "GIF block");
        }
    }
    return std::optional<GIFFrame>();
}

Result<std::optional<GIFFrame>> GIFReader::readFrame() {
    if (left() < 1 + kDescriptorSize) return failure(ErrorKind::Ended, "GIF frame");
    GIFFrame frame = std::exchange(control_, {});
    frame.rect = {word(at_ + 1), word(at_ + 3), word(at_ + 5), word(at_ + 7)};
    const std::uint8_t flags = bytes_[at_ + kDescriptorSize];
    frame.interlaced = (flags & 0x40) != 0;
    at_ += 1 + kDescriptorSize;

    Result<std::span<const std::uint8_t>> palette = readPalette(flags);
    if (!palette) return std::move(palette).error();
    frame.palette = palette->empty() ? globalPalette_ : *palette;

    if (left() == 0) return failure(ErrorKind::Ended, "GIF frame");
    frame.minimumCodeSize = bytes_[at_++];
    frame.packed = bytes_.subspan(at_);
    insideFrame_ = true;
    return std::optional(frame);
}

void GIFReader::readExtension() noexcept {
    const std::uint8_t label = left() > 1 ? bytes_[at_ + 1] : std::uint8_t{0};
    at_ = std::min(at_ + 2, bytes_.size());
    if (label == kGraphicControl) {
        if (const auto block = subBlock()) readGraphicControl(*block);
    } else if (label == kApplication) {
        if (const auto block = subBlock(); block && saysHowOftenToLoop(*block)) readLoopCount();
    }
    skipSubBlocks();
}

void GIFReader::readGraphicControl(std::span<const std::uint8_t> block) noexcept {
    if (block.size() < kControlSize) return;
    control_.disposal = disposalOf(block[0]);
    control_.delayHundredths = static_cast<std::uint16_t>(block[1] | block[2] << 8);
    control_.transparentIndex = (block[0] & 1) != 0 ? std::optional(block[3]) : std::nullopt;
}

void GIFReader::readLoopCount() noexcept {
    while (const auto block = subBlock())
        if (block->size() >= 3 && (*block)[0] == 1 && !loopCount_)
            loopCount_ = static_cast<std::uint16_t>((*block)[1] | (*block)[2] << 8);
}

// The next sub-block, none at the terminator (which is left where it is) or where the file ends inside it.
std::optional<std::span<const std::uint8_t>> GIFReader::subBlock() noexcept {
    if (left() == 0 || bytes_[at_] == 0) return std::nullopt;
    const std::size_t length = bytes_[at_];
    if (left() <= length) {
        at_ = bytes_.size();
        return std::nullopt;
    }
    return bytes_.subspan(std::exchange(at_, at_ + 1 + length) + 1, length);
}

// Only lengths are read, each where the one before says, so memory would be waited for at every block. Nearly
// all are full: what will be read some blocks on is fetched meanwhile (a 14 MB file: 1.2 ms, with this 0.7).
void GIFReader::skipSubBlocks() noexcept {
    constexpr std::size_t kAhead = std::size_t{16} * 256;
    while (subBlock()) {
        if (left() > kAhead) __builtin_prefetch(bytes_.data() + at_ + kAhead);
    }
    at_ = std::min(at_ + 1, bytes_.size());
}

std::uint32_t GIFReader::word(std::size_t offset) const noexcept {
    return bytes_[offset] | std::uint32_t{bytes_[offset + 1]} << 8;
}

void GIFReader::rewind() noexcept {
    at_ = firstBlock_;
    control_ = {};
    insideFrame_ = false;
}

GIFContents GIFReader::contents() const {
    GIFReader reader = *this;
    reader.rewind();
    GIFContents contents;
    for (;;) {
        Result<std::optional<GIFFrame>> frame = reader.next();
        if (!frame) {
            contents.problem = std::move(frame).error();
            break;
        }
        if (!*frame) break;
        if (contents.frames.size() == limits_.frames) {
            contents.problem = failure(ErrorKind::TooLarge, "GIF frame count");
            break;
        }
        contents.frames.push_back(**frame);
    }
    contents.loopCount = reader.loopCount();
    return contents;
}

std::uint64_t GIFContents::largestFrame(std::uint64_t limit) const noexcept {
    std::uint64_t largest = 0;
    for (const GIFFrame& frame : frames)
        if (frame.rect.area() <= limit) largest = std::max(largest, frame.rect.area());
    return largest;
}

std::size_t GIFContents::keyFrame(std::size_t index, std::uint32_t canvasWidth, std::uint32_t canvasHeight,
                                  const std::function<bool(const GIFFrame&)>& isComplete) const {
    const auto whole = [&](const GIFFrame& frame) { return !isComplete || isComplete(frame); };
    for (std::size_t i = index; i > 0; --i) {
        const GIFFrame &frame = frames[i], &before = frames[i - 1];
        const bool givesBack = i < index && frame.disposal == GIFDisposal::Previous;
        if (frame.hidesCanvas(canvasWidth, canvasHeight) && !givesBack && whole(frame)) return i;
        const bool cleared =
            before.disposal == GIFDisposal::Background && before.coversCanvas(canvasWidth, canvasHeight);
        if (cleared && whole(before)) return i;
    }
    return 0;
}

bool GIFFrame::coversCanvas(std::uint32_t canvasWidth, std::uint32_t canvasHeight) const noexcept {
    return rect.left == 0 && rect.top == 0 && rect.width >= canvasWidth && rect.height >= canvasHeight;
}

bool GIFFrame::hidesCanvas(std::uint32_t canvasWidth, std::uint32_t canvasHeight) const noexcept {
    return !transparentIndex && coversCanvas(canvasWidth, canvasHeight);
}

}  // namespace kx
