// SPDX-License-Identifier: MIT

#include <cstring>
#include <string_view>

#include <KXFoundation/Platform/Graphics/ImageOrientation.h>

namespace kx {

namespace {

/// Numbers of a TIFF structure, in the byte order of its header; 0 beyond the end.
class TiffNumbers {
  public:
    explicit TiffNumbers(std::span<const std::byte> data) noexcept
        : data_(data), isBigEndian_(!data.empty() && data[0] == std::byte{'M'}) {}

    [[nodiscard]] std::uint32_t word(std::size_t at) const noexcept { return number(at, 2); }
    [[nodiscard]] std::uint32_t longWord(std::size_t at) const noexcept { return number(at, 4); }

  private:
    [[nodiscard]] std::uint32_t number(std::size_t at, std::size_t size) const noexcept {
        if (at > data_.size() || size > data_.size() - at) return 0;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const std::size_t place = isBigEndian_ ? at + i : at + size - 1 - i;
            value = value << 8 | std::to_integer<std::uint32_t>(data_[place]);
        }
        return value;
    }

    std::span<const std::byte> data_;
    bool isBigEndian_;
};

constexpr std::string_view kExifName("Exif\0\0", 6);

struct Steps {
    std::ptrdiff_t first, column, row;  // in pixels of the stored bitmap, for each of the picture's
};

Steps stepsOf(ImageOrientation orientation, std::ptrdiff_t wide, std::ptrdiff_t high) noexcept {
    const std::ptrdiff_t right = wide - 1;
    const std::ptrdiff_t bottom = (high - 1) * wide;
    switch (orientation) {
        case ImageOrientation::TopRight:
            return {right, -1, wide};
        case ImageOrientation::BottomRight:
            return {bottom + right, -1, -wide};
        case ImageOrientation::BottomLeft:
            return {bottom, 1, -wide};
        case ImageOrientation::LeftTop:
            return {0, wide, 1};
        case ImageOrientation::RightTop:
            return {bottom, -wide, 1};
        case ImageOrientation::RightBottom:
            return {bottom + right, -wide, -1};
        case ImageOrientation::LeftBottom:
            return {right, wide, -1};
        case ImageOrientation::TopLeft:
            break;
    }
    return {0, 1, wide};
}

}  // namespace

bool isExif(std::span<const std::byte> data) noexcept {
    return data.size() >= kExifName.size() &&
           std::memcmp(data.data(), kExifName.data(), kExifName.size()) == 0;
}

ImageOrientation exifOrientation(std::span<const std::byte> exif) noexcept {
    constexpr std::uint32_t kOrientationTag = 274, kWordType = 3, kEntrySize = 12;
    const TiffNumbers numbers(isExif(exif) ? exif.subspan(kExifName.size()) : exif);
    if (numbers.word(2) != 42) return ImageOrientation::TopLeft;
    const std::size_t directory = numbers.longWord(4);
    const std::uint32_t count = numbers.word(directory);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 2 + std::size_t{i} * kEntrySize;
        if (numbers.word(entry) != kOrientationTag || numbers.word(entry + 2) != kWordType) continue;
        const std::uint32_t value = numbers.word(entry + 8);
        if (value >= 1 && value <= 8) return static_cast<ImageOrientation>(value);
    }
    return ImageOrientation::TopLeft;
}

std::shared_ptr<NSBitmapImageRep> upright(std::shared_ptr<NSBitmapImageRep> bitmap,
                                          ImageOrientation orientation) {
    if (orientation == ImageOrientation::TopLeft) return bitmap;
    const std::uint32_t wide = bitmap->pixelsWide(), high = bitmap->pixelsHigh();
    const bool isTurned = orientation >= ImageOrientation::LeftTop;
    auto made = NSBitmapImageRep::bitmapWithPixels(isTurned ? high : wide, isTurned ? wide : high);
    if (!made) return nullptr;
    const Steps steps = stepsOf(orientation, wide, high);
    const std::uint32_t* const stored = bitmap->pixels().data();
    std::uint32_t* to = made->pixels().data();
    for (std::ptrdiff_t y = 0; y < made->pixelsHigh(); ++y) {
        const std::uint32_t* from = stored + steps.first + y * steps.row;
        for (std::ptrdiff_t x = 0; x < made->pixelsWide(); ++x) *to++ = from[x * steps.column];
    }
    return made;
}

}  // namespace kx
