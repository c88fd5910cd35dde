// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {

constexpr std::string_view kPlace = "frame", kBitmaps = "bitmaps";

// When the library is loaded: an archive may be read before the first picture is made.
[[maybe_unused]] const bool isRegistered = (registerSecureCoding<NSImage>(), true);

void addEncoded(ArrayBuilder& list, const NSBitmapImageRep& bitmap) {
    if (Value origin = bitmap.encodedData(); !origin.isNull()) {
        list.add(std::move(origin));
        return;
    }
    auto encoded = encodePng(bitmap);
    if (!encoded) return logError("picture", encoded.error());
    list.add(Value::data(*std::move(encoded)));
}

}  // namespace

void NSImage::encodeWithCoder(NSCoder& coder) const {
    ArrayBuilder list;
    bool hasBitmaps = false;
    for (const auto& rep : representations_) {
        const auto bitmap = objectCast<NSBitmapImageRep>(rep);
        if (bitmap) addEncoded(list, *bitmap);
        hasBitmaps |= bitmap != nullptr;
    }
    if (const auto drawn = hasBitmaps ? nullptr : bitmapAtScale(1)) addEncoded(list, *drawn);
    coder.encode(kPlace, NSRect({}, size_));
    coder.encode(kBitmaps, list.build());
}

bool NSImage::initWithCoder(NSCoder& coder) {
    if (!init(coder.decodeRect(kPlace).value_or(NSRect()).size)) return false;
    const Value list = coder.decode(kBitmaps);
    // Of all bitmaps: an archive of a few bytes must not ask for more than a file may.
    std::uint64_t pixels = 0;
    for (const Value& encoded : list.elements()) {
        auto bitmap = decodeImageKeepingData(encoded);
        if (!bitmap) return false;
        pixels += std::as_const(**bitmap).pixels().size();
        if (pixels > NSBitmapImageRep::pixelLimit()) return false;
        addRepresentation(*std::move(bitmap));
    }
    return true;
}

}  // namespace kx
