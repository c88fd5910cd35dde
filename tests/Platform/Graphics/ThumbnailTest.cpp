// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/JpegCodec.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>
#include <KXFoundation/Platform/Graphics/Thumbnail.h>
#include <KXFoundation/Testing/PictureComparison.h>

namespace kx {

TEST(Thumbnail, FitsTheBoxInItsOwnProportions) {
    const std::uint32_t rows[][5] = {
        {640, 480, 64, 64, 48}, {480, 640, 50, 38, 50}, {30, 20, 64, 30, 20}, {2000, 4, 100, 100, 1}};
    for (const auto& [wide, high, box, wantedWide, wantedHigh] : rows) {
        const auto bitmap = NSBitmapImageRep::bitmapWithPixels(wide, high);
        std::ranges::fill(bitmap->pixels(), 0xFF808080);
        for (const auto& encoded : {encodePng(*bitmap), encodeJpeg(*bitmap, 1)}) {
            const auto small = decodeThumbnail(*encoded, box, box);
            ASSERT_TRUE(small.ok()) << wide;
            const auto wanted = NSBitmapImageRep::bitmapWithPixels(wantedWide, wantedHigh);
            std::ranges::fill(wanted->pixels(), 0xFF808080);
            EXPECT_TRUE(testing::compare(**small, *wanted, {1, 0}).accepted) << wide;
        }
    }
    const std::byte broken[] = {std::byte{0xFF}, std::byte{0xD8}, std::byte{0xFF}};
    EXPECT_FALSE(decodeThumbnail(broken, 64, 64).ok());
    EXPECT_FALSE(decodeThumbnail({}, 64, 64).ok());
}

}  // namespace kx
