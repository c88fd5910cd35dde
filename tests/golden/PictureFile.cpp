// SPDX-License-Identifier: MIT

#include "golden/PictureFile.h"

#include <cstdint>
#include <vector>

#include <png.h>

namespace kx::testing {

bool writeSmallPicture(const NSBitmapImageRep& picture, const std::string& path) {
    std::vector<std::uint8_t> rgb;
    rgb.reserve(picture.pixels().size() * 3);
    for (const std::uint32_t pixel : picture.pixels()) {
        for (const int shift : {16, 8, 0}) rgb.push_back(static_cast<std::uint8_t>(pixel >> shift));
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.pixelsWide();
    image.height = picture.pixelsHigh();
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), 0, nullptr) != 0;
}

}  // namespace kx::testing
