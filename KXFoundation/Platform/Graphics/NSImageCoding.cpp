#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {

constexpr std::string_view kPlace = "frame", kBitmaps = "bitmaps";

// When the library is loaded: an archive may be read before the first picture is made.
[[maybe_unused]] const bool isRegistered = (registerSecureCoding<NSImage>(), true);

void addEncoded(ArrayBuilder& list, const NSBitmapImageRep& bitmap) {
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
    std::uint64_t pixels =
        0;  // of all bitmaps: an archive of a few bytes must not ask for more than a file may
    for (const Value& encoded : list.elements()) {
        const auto data = encoded.asData();
        auto bitmap = decodePng(data.value_or(std::span<const std::byte>()));
        if (!bitmap) return false;
        pixels += (*bitmap)->pixels().size();
        if (pixels > NSBitmapImageRep::pixelLimit()) return false;
        addRepresentation(*std::move(bitmap));
    }
    return true;
}

}  // namespace kx
