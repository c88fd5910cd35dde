#include "golden/PictureFile.h"

#include <cstdint>
#include <vector>

#include <png.h>

#include <KXFoundation/Platform/Graphics/NSImage.h>

namespace kx::testing {

std::shared_ptr<NSBitmapImageRep> readPicture(const std::string& path) {
    const auto image = NSImage::initWithContentsOfFile(path);
    return image ? image->largestBitmap() : nullptr;
}

bool writePicture(const NSBitmapImageRep& picture, const std::string& path) {
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
