// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <map>

#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/Resampling/Resampler.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

constexpr std::uint64_t kLargestFile = std::uint64_t{256} << 20;

Result<std::shared_ptr<NSBitmapImageRep>> readBitmap(const std::string& path) {
    auto contents = readImageFile(path, kLargestFile);
    if (!contents) return contents.error();
    auto bitmap = decodeImageKeepingData(*std::move(contents));
    if (bitmap) return bitmap;
    Error error = bitmap.error();
    error.where = path + ": " + error.where;
    return error;
}

/// The bitmap in the file; none if it is missing (not said) or unreadable (one log line).
std::shared_ptr<NSBitmapImageRep> bitmapIn(const std::optional<std::string>& path) {
    if (!path) return nullptr;
    auto bitmap = readBitmap(*path);
    if (bitmap) return *bitmap;
    if (bitmap.error().kind != ErrorKind::Missing) logError("picture", bitmap.error());
    return nullptr;
}

NSSize sizeOf(const NSBitmapImageRep& bitmap, double scale) {
    return {bitmap.pixelsWide() / scale, bitmap.pixelsHigh() / scale};
}

/// A picture of what there is at scales 1 and 2; its size is that of the first.
std::shared_ptr<NSImage> imageOf(std::shared_ptr<NSBitmapImageRep> once,
                                 std::shared_ptr<NSBitmapImageRep> twice) {
    if (!once) return NSImage::initWithBitmap(std::move(twice), 2);
    auto image = NSImage::initWithBitmap(std::move(once), 1);
    if (twice) image->addRepresentation(std::move(twice));
    return image;
}

/// "/a/photo.png" gives "/a/photo@2x.png".
std::string doubledPath(std::string_view path) {
    const std::size_t name = path.rfind('/') + 1;  // npos + 1 is 0
    const std::size_t dot = path.find('.', name) == std::string_view::npos ? path.size() : path.rfind('.');
    return std::string(path.substr(0, dot)).append("@2x").append(path.substr(dot));
}

constexpr std::string_view kExtensions[] = {"png", "jpg", "jpeg", "webp", "tiff", "tif", "gif"};

struct ResourcePaths {
    std::optional<std::string> once, twice;
    [[nodiscard]] bool isEmpty() const { return !once && !twice; }
};

/// The main bundle's files of the name; it may have its extension, else the first that there is counts.
ResourcePaths pathsOf(std::string_view name) {
    const auto bundle = NSBundle::mainBundle();
    const auto pathsWith = [&](std::string_view stem, std::string_view extension) {
        return ResourcePaths{bundle->pathForResource(stem, extension),
                             bundle->pathForResource(std::string(stem) + "@2x", extension)};
    };
    if (const std::size_t dot = name.rfind('.'); dot != name.npos) {
        const std::string_view own = name.substr(dot + 1);
        if (std::ranges::find(kExtensions, own) != std::end(kExtensions))
            return pathsWith(name.substr(0, dot), own);
    }
    ResourcePaths found;
    for (const std::string_view extension : kExtensions) {
        if (found.isEmpty()) found = pathsWith(name, extension);
    }
    return found;
}

struct NamedImages {
    Mutex mutex;
    std::map<std::string, std::weak_ptr<NSImage>> images KX_GUARDED_BY(mutex);  // by path
};
constinit ProcessState<NamedImages> namedImages;

/// Whether the bitmap has a pixel for each of the picture's at that scale.
bool suffices(const NSImageRep& bitmap, NSSize size, double scale) {
    return bitmap.pixelsWide() >= size.width * scale - 0.5 &&
           bitmap.pixelsHigh() >= size.height * scale - 0.5;
}

std::uint64_t area(const NSImageRep& bitmap) {
    return std::uint64_t{bitmap.pixelsWide()} * bitmap.pixelsHigh();
}

}  // namespace

bool NSImage::init(NSSize size) {
    size_ = size;
    return Super::init();
}

std::shared_ptr<NSImage> NSImage::initWithSize(NSSize size) {
    return make<NSImage>(size);
}

std::shared_ptr<NSImage> NSImage::initWithData(std::span<const std::byte> data) {
    auto bitmap = decodeImageKeepingData(Value::data(data));
    return bitmap ? initWithBitmap(*bitmap) : nullptr;
}

std::shared_ptr<NSImage> NSImage::initWithContentsOfFile(std::optional<std::string_view> path) {
    if (!path) return nullptr;
    auto bitmap = readBitmap(std::string(*path));
    if (bitmap) return imageOf(*bitmap, bitmapIn(doubledPath(*path)));
    logError("picture", bitmap.error());
    return nullptr;
}

std::shared_ptr<NSImage> NSImage::initWithBitmap(std::shared_ptr<NSBitmapImageRep> bitmap, double scale) {
    if (!bitmap || !(scale > 0)) return nullptr;
    auto image = initWithSize(sizeOf(*bitmap, scale));
    image->addRepresentation(std::move(bitmap));
    return image;
}

std::shared_ptr<NSImage> NSImage::imageWithSize(NSSize size, NSCustomImageRep::DrawingHandler handler) {
    auto image = initWithSize(size);
    image->addRepresentation(make<NSCustomImageRep>(size, std::move(handler)));
    return image;
}

std::shared_ptr<NSImage> NSImage::imageNamed(std::optional<std::string_view> name) {
    if (!name || name->empty()) return nullptr;
    const auto [once, twice] = pathsOf(*name);
    if (!once && !twice) return nullptr;
    NamedImages& named = namedImages.get();
    const MutexLock lock(named.mutex);
    std::weak_ptr<NSImage>& known = named.images[once ? *once : *twice];
    if (auto image = known.lock()) return image;
    auto image = imageOf(bitmapIn(once), bitmapIn(twice));
    known = image;
    return image;
}

void NSImage::addRepresentation(std::shared_ptr<NSImageRep> representation) {
    if (!representation) return;
    representations_.push_back(std::move(representation));
    ++changes_;
}

std::uint64_t NSImage::changeCount() const noexcept {
    std::uint64_t count = changes_;
    for (const auto& rep : representations_) count += rep->changeCount();
    return count;
}

std::shared_ptr<NSImageRep> NSImage::bestRepresentation(double scale) const {
    std::shared_ptr<NSImageRep> sufficient, drawn, largest;
    for (const auto& rep : representations_) {
        if (area(*rep) == 0) {
            drawn = rep;
        } else if (suffices(*rep, size_, scale)) {
            if (!sufficient || area(*rep) < area(*sufficient)) sufficient = rep;
        } else if (!largest || area(*rep) > area(*largest)) {
            largest = rep;
        }
    }
    return sufficient ? sufficient : drawn ? drawn : largest;
}

void NSImage::drawInRect(NSRect rect, double opacity) const {
    GraphicsContext* context = GraphicsContext::current();
    if (!context) return;
    // What counts is how many pixels the rectangle covers, not the picture's own size.
    const double stretch = size_.width > 0 ? rect.size.width / size_.width : 1;
    if (const auto rep = bestRepresentation(context->scale() * stretch)) rep->draw(*context, rect, opacity);
}

std::shared_ptr<NSBitmapImageRep> NSImage::bitmapAtScale(double scale) const {
    const NSSize extent{size_.width * scale, size_.height * scale};
    const NSSize pixels{std::ceil(extent.width), std::ceil(extent.height)};
    const auto rep = bestRepresentation(scale);
    if (!rep) return nullptr;
    auto own = objectCast<NSBitmapImageRep>(rep);
    if (own && own->pixelsWide() == pixels.width && own->pixelsHigh() == pixels.height) return own;
    return drawnBitmap(pixels, extent);
}

std::shared_ptr<NSBitmapImageRep> NSImage::largestBitmap() const {
    std::shared_ptr<NSBitmapImageRep> largest;
    for (const auto& rep : representations_) {
        auto bitmap = objectCast<NSBitmapImageRep>(rep);
        if (bitmap && (!largest || area(*bitmap) > area(*largest))) largest = std::move(bitmap);
    }
    return largest ? largest : bitmapAtScale(1);
}

std::shared_ptr<NSBitmapImageRep> NSImage::drawnBitmap(NSSize size, NSSize extent) const {
    auto bitmap = NSBitmapImageRep::bitmapWithSize(size);
    const auto rep = bestRepresentation(size_.width > 0 ? extent.width / size_.width : 1);
    if (!bitmap || !rep) return bitmap;
    if (const auto pixels = objectCast<NSBitmapImageRep>(rep)) {
        resample(*pixels, *bitmap, extent);
    } else if (const auto context = GraphicsContext::onBitmap(bitmap)) {
        rep->draw(*context, {{}, extent}, 1);
    }
    return bitmap;
}

}  // namespace kx
