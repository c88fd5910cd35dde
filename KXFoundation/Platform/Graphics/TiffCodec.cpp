// SPDX-License-Identifier: MIT

#include <cstring>
#include <string>

#include <KXFoundation/Platform/Graphics/ImageOrientation.h>
#include <KXFoundation/Platform/Graphics/TiffCodec.h>
#include <KXFoundation/Platform/Graphics/TiffModule.h>
#include <KXFoundation/Platform/Runtime/Module.h>

namespace kx {

namespace {

const TiffModule* tiffModule() {
    const auto module = openModule<TiffModule>("tiff");
    return module ? *module : nullptr;
}

Error noModule() {
    return {ErrorKind::Unsupported, 0, "TIFF: no module for it"};
}

std::uint32_t* allocateBitmap(void* context, std::uint32_t wide, std::uint32_t high) {
    auto& bitmap = *static_cast<std::shared_ptr<NSBitmapImageRep>*>(context);
    bitmap = NSBitmapImageRep::bitmapWithPixels(wide, high);
    return bitmap ? bitmap->pixels().data() : nullptr;
}

}  // namespace

bool sniffTiff(std::span<const std::byte> data) {
    return data.size() >= 4 &&
           (std::memcmp(data.data(), "II*\0", 4) == 0 || std::memcmp(data.data(), "MM\0*", 4) == 0);
}

Result<std::shared_ptr<NSBitmapImageRep>> decodeTiff(std::span<const std::byte> data) {
    const TiffModule* module = tiffModule();
    if (!module) return noModule();
    std::shared_ptr<NSBitmapImageRep> bitmap;
    std::uint32_t orientation = 1;
    char reason[256];
    const bool isRead = module->read(data.data(), data.size(), NSBitmapImageRep::pixelLimit(), allocateBitmap,
                                     &bitmap, &orientation, reason, sizeof reason);
    if (!isRead && !bitmap && !reason[0]) return Error{ErrorKind::TooLarge, 0, "TIFF of too many pixels"};
    if (!isRead) return Error{ErrorKind::Corrupt, 0, std::string("TIFF: ") + reason};
    const bool isKnown = orientation >= 1 && orientation <= 8;
    if (auto turned = upright(std::move(bitmap), static_cast<ImageOrientation>(isKnown ? orientation : 1)))
        return turned;
    return Error{ErrorKind::TooLarge, 0, "TIFF: no memory for its pixels"};
}

Result<std::vector<std::byte>> encodeTiff(const NSBitmapImageRep& bitmap) {
    const TiffModule* module = tiffModule();
    if (!module) return noModule();
    std::vector<std::byte> encoded;
    const auto take = [](void* context, const void* data, std::size_t size) {
        const auto* const bytes = static_cast<const std::byte*>(data);
        static_cast<std::vector<std::byte>*>(context)->assign(bytes, bytes + size);
    };
    char reason[256];
    if (!module->write(bitmap.pixels().data(), bitmap.pixelsWide(), bitmap.pixelsHigh(), take, &encoded,
                       reason, sizeof reason))
        return Error{ErrorKind::Failed, 0, std::string("TIFF: ") + reason};
    return encoded;
}

}  // namespace kx
