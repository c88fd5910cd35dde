// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstdlib>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Testing/PictureComparison.h>

namespace kx::testing {

int distance(std::uint32_t a, std::uint32_t b) {
    int largest = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int difference = static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255);
        largest = std::max(largest, std::abs(difference));
    }
    return largest;
}

std::string Difference::describe() const {
    if (!sameSize) return "the sizes differ";
    if (pixels == 0) return "no pixel differs";
    return std::to_string(pixels) + " pixels differ, by up to " + std::to_string(largest);
}

namespace {

bool sameSize(const NSBitmapImageRep& a, const NSBitmapImageRep& b) {
    return a.pixelsWide() == b.pixelsWide() && a.pixelsHigh() == b.pixelsHigh();
}

std::shared_ptr<NSBitmapImageRep> markDifferences(const NSBitmapImageRep& a, const NSBitmapImageRep& b,
                                                  int channel) {
    constexpr std::uint32_t kMark = 0xFFFF0000;
    auto marked = NSBitmapImageRep::bitmapWithPixels(a.pixelsWide(), a.pixelsHigh());
    GraphicsContext::onBitmap(marked)->drawBitmap(a, {0, 0, double(a.pixelsWide()), double(a.pixelsHigh())},
                                                  0.3);
    for (std::size_t i = 0; sameSize(a, b) && i < marked->pixels().size(); ++i) {
        if (distance(a.pixels()[i], b.pixels()[i]) > channel) marked->pixels()[i] = kMark;
    }
    return marked;
}

}  // namespace

Difference compare(const NSBitmapImageRep& a, const NSBitmapImageRep& b, Tolerance tolerance) {
    Difference difference{sameSize(a, b)};
    if (!difference.sameSize) return difference;
    for (std::size_t i = 0; i < a.pixels().size(); ++i) {
        const int apart = distance(a.pixels()[i], b.pixels()[i]);
        difference.largest = std::max(difference.largest, apart);
        if (apart > tolerance.channel) ++difference.pixels;
    }
    difference.accepted = difference.pixels <= tolerance.pixels;
    return difference;
}

std::shared_ptr<NSBitmapImageRep> sideBySide(const NSBitmapImageRep& a, const NSBitmapImageRep& b,
                                             Tolerance tolerance) {
    constexpr std::uint32_t kGap = 8;
    auto marked = markDifferences(a, b, tolerance.channel);
    const NSBitmapImageRep* const pictures[] = {&a, &b, marked.get()};
    const std::uint32_t wide = 2 * a.pixelsWide() + b.pixelsWide() + 2 * kGap;
    auto page = NSBitmapImageRep::bitmapWithPixels(wide, std::max(a.pixelsHigh(), b.pixelsHigh()));
    if (!page) return marked;
    const auto context = GraphicsContext::onBitmap(page);
    context->fill(context->clipBounds(), *NSColor::colorWithWhite(0.8, 1));
    double x = 0;
    for (const NSBitmapImageRep* picture : pictures) {
        context->drawBitmap(*picture, {x, 0, double(picture->pixelsWide()), double(picture->pixelsHigh())});
        x += picture->pixelsWide() + kGap;
    }
    return page;
}

Result<Difference> compareWithFile(const NSBitmapImageRep& picture, const std::string& path,
                                   Tolerance tolerance) {
    const auto kept = readPicture(path);
    if (!kept) return kept.error();
    return compare(**kept, picture, tolerance);
}

Result<std::shared_ptr<NSBitmapImageRep>> readPicture(const std::string& path) {
    if (const auto there = FileSystem::slot().current().info(path); !there) return there.error();
    const auto image = NSImage::initWithContentsOfFile(path);
    auto bitmap = image ? image->largestBitmap() : nullptr;
    if (!bitmap) return Error{ErrorKind::Corrupt, 0, path};
    return bitmap;
}

Result<void> writePicture(const NSBitmapImageRep& picture, const std::string& path) {
    const auto encoded = encodePng(picture);
    if (!encoded) return encoded.error();
    const std::string_view contents(reinterpret_cast<const char*>(encoded->data()), encoded->size());
    return replaceFile(FileSystem::slot().current(), path, contents, Kept::Document);
}

}  // namespace kx::testing
