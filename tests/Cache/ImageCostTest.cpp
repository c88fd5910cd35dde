// SPDX-License-Identifier: MIT

#include <functional>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <KXFoundation/Cache/KXImageCache.h>
#include <KXFoundation/Media/KXPhotoUtils.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Testing/CountedMemory.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace {
int encodes = 0;
}

/// In front of libjpeg's: counts the pictures that are begun.
extern "C" KX_EXPORT void jpeg_start_compress(void* codec, int writesAllTables) {
    using Start = void (*)(void*, int);
    static const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "jpeg_start_compress"));
    ++encodes;
    start(codec, writesAllTables);
}

namespace kx {
namespace {

constexpr std::uint32_t kSide = 512;

std::shared_ptr<NSBitmapImageRep> plain() {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(kSide, kSide);
    for (std::uint32_t& pixel : bitmap->pixels()) pixel = 0xFF336699;
    return bitmap;
}

/// How many pictures the work encodes, as JPEG.
template <class Work>
int encodesOf(const Work& work) {
    const int before = encodes;
    work();
    return encodes - before;
}

TEST(ImageCost, ImgToDataEncodesOnceAndCopiesNoPixels) {
    const auto image = NSImage::initWithBitmap(plain());
    const std::size_t held = testing::heldMemory();
    testing::takePeakMemory();
    std::optional<std::vector<std::byte>> data;
    EXPECT_EQ(encodesOf([&] { data = KXPhotoUtils::imgToData(image, 1.0); }), 1);
    ASSERT_TRUE(data);
    EXPECT_LT(testing::takePeakMemory() - held, data->size() + 16 * kSide) << "the result and a few rows";
}

TEST(ImageCost, IsKeptUntilTheImageChanges) {
    const testing::ScopedPlatform platform;
    const auto cache = KXImageCache::initWithPath(platform.directory() / "cache");
    const auto other = KXImageCache::initWithPath(platform.directory() / "other");
    const auto image = NSImage::initWithBitmap(plain());
    std::shared_ptr<GraphicsContext> context;
    const std::tuple<const char*, std::function<void()>, int> rows[] = {
        {"first", [&] { cache->setImage(image, "a"); }, 1},
        {"again", [&] { cache->setImage(image, "b"); }, 0},
        {"another cache", [&] { other->setImage(image, "a"); }, 0},
        {"read", [&] { static_cast<void>(cache->getImageForKey("a")); }, 0},
        {"disk only", [&] { cache->setImage(NSImage::initWithBitmap(plain()), "c", 2); }, 0},
        {"one more representation", [&] { image->addRepresentation(plain()); }, 0},
        {"after that", [&] { cache->setImage(image, "a"); }, 1},
        {"pixels", [&] { image->largestBitmap()->pixels()[kSide * 9] = 0xFFFFFFFF; }, 0},
        {"after these", [&] { cache->setImage(image, "a"); }, 1},
        {"a context on it", [&] { context = GraphicsContext::onBitmap(image->largestBitmap()); }, 0},
        {"before it draws", [&] { cache->setImage(image, "a"); }, 1},
        {"drawing",
         [&] {
             context->fill({0, 0, 9, kSide}, *NSColor::clearColor()), context.reset();
         },
         0},
        {"after that too", [&] { cache->setImage(image, "a"); }, 1},
        {"and at rest", [&] { cache->setImage(image, "a"); }, 0},
    };
    for (const auto& [what, work, count] : rows) EXPECT_EQ(encodesOf(work), count) << what;
    const auto bytes = KXPhotoUtils::imgToData(image, 1.0)->size();
    EXPECT_EQ(cache->imageCost(image), bytes);
    cache->removeImageForKey("b", 1);
    EXPECT_EQ(cache->memoryCache()->totalCost(), bytes);
    EXPECT_EQ(cache->imageCost(nullptr), 0u);
    EXPECT_EQ(cache->imageCost(NSImage::initWithSize({3, 3})), 0u);
}

class CountingByPixels : public Subclass<CountingByPixels, KXImageCache> {
  public:
    std::uint64_t imageCost(const std::shared_ptr<NSImage>& image) override {
        return std::uint64_t{image->largestBitmap()->pixelsWide()} * 4;
    }
};

TEST(ImageCost, OfASubclassIsAsked) {
    const testing::ScopedPlatform platform;
    const auto cache =
        KXImageCache::initWithMemoryCacheClass<CountingByPixels>("KXMemoryCache", nullptr, "anywhere");
    EXPECT_EQ(encodesOf([&] { cache->setImage(NSImage::initWithBitmap(plain()), "a"); }), 0);
    EXPECT_EQ(cache->memoryCache()->totalCost(), kSide * 4);
}

}  // namespace
}  // namespace kx
