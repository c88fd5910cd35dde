// SPDX-License-Identifier: MIT

#include <filesystem>

#include <gmock/gmock.h>

#include <KXFoundation/Cache/KXImageCache.h>
#include <KXFoundation/Cache/KXYYDiskCache.h>
#include <KXFoundation/Cache/KXYYMemoryCache.h>
#include <KXFoundation/Platform/Foundation/NSException.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/JpegCodec.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Pixels of every alpha.
std::shared_ptr<NSBitmapImageRep> shades() {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(64, 64);
    std::uint32_t alpha = 0;
    for (std::uint32_t& pixel : bitmap->pixels()) {
        alpha = (alpha + 7) % 256;
        pixel = alpha << 24 | alpha << 16 | alpha / 2 << 8 | alpha / 3;
    }
    return bitmap;
}

/// A copy: a drawn image's bitmap lives no longer than this.
std::vector<std::uint32_t> pixelsOf(const NSImage& image) {
    const auto bitmap = image.largestBitmap();
    const auto pixels = std::as_const(*bitmap).pixels();
    return {pixels.begin(), pixels.end()};
}

Value originOf(const NSImage& image) {
    return image.largestBitmap()->encodedData();
}

struct KXImageCacheTest : ::testing::Test {
    std::shared_ptr<KXImageCache> open() const { return KXImageCache::initWithPath(folder); }
    /// A picture out of a JPEG file, and the file's bytes.
    std::pair<std::shared_ptr<NSImage>, Value> photograph() const {
        const auto encoded = encodeJpeg(*shades(), 0.8);
        const std::string_view contents(reinterpret_cast<const char*>(encoded->data()), encoded->size());
        return {NSImage::initWithContentsOfFile(platform.directory().write("photo.jpg", contents)),
                Value::data(std::span(*encoded))};
    }

    testing::ScopedPlatform platform;
    const std::string folder = platform.directory() / "cache";
};

/// The answer of the form with a callback: 0 to 2, or -1 if on a wrong thread, too early or not at all.
int sourceOf(KXImageCache& cache, KXCacheKey key, std::uint64_t type) {
    int answer = -1;
    const auto note = [&answer](const std::shared_ptr<NSImage>& image, std::uint64_t source) {
        const bool isRight = isMainThread() && (image != nullptr) == (source != 0);
        answer = isRight ? static_cast<int>(source) : -1;
    };
    cache.getImageForKey(key, type, note);
    if (std::exchange(answer, -1) != -1) return -1;
    drainQueues();
    return answer;
}

TEST_F(KXImageCacheTest, TheMaskSaysWhichStores) {
    const auto cache = open();
    const auto image = NSImage::initWithBitmap(shades());
    for (std::uint64_t set = 0; set < 8; ++set) {
        for (std::uint64_t asked = 0; asked < 8; ++asked) {
            const std::uint64_t common = set & asked & 3;
            const int source = common & 1 ? 1 : static_cast<int>(common);
            cache->setImage(image, "a", set);
            EXPECT_EQ(sourceOf(*cache, "a", asked), source) << set << " " << asked;
            EXPECT_EQ(cache->containsImageForKey("a", asked), source != 0) << set << " " << asked;
            const auto found = cache->getImageForKey("a", asked);
            EXPECT_EQ(found != nullptr, source != 0) << set << " " << asked;
            EXPECT_EQ(found == image, source == 1) << set << " " << asked;
            EXPECT_EQ(cache->memoryCache()->containsObjectForKey("a"), (set & 1) != 0) << "filled from disk";
            std::optional<bool> contains;
            cache->containsImageForKey("a", asked, [&](bool answer) { contains = answer; });
            drainQueues();
            EXPECT_EQ(contains, source != 0) << set << " " << asked;

            cache->removeImageForKey("a", asked);
            EXPECT_EQ(cache->containsImageForKey("a"), (set & ~asked & 3) != 0) << set << " " << asked;
            bool isRemoved = false;
            cache->removeImageForKey("a", 3, [&] { isRemoved = isMainThread(); });
            EXPECT_FALSE(isRemoved);
            drainQueues();
            EXPECT_TRUE(isRemoved);
            EXPECT_FALSE(cache->containsImageForKey("a"));
        }
    }
}

TEST_F(KXImageCacheTest, APathHasOneCacheUntilItIsDestroyed) {
    EXPECT_EQ(KXImageCache::shareInstanceWithPath(folder), nullptr);
    const auto cache = open();
    EXPECT_EQ(cache->path(), folder);
    EXPECT_EQ(KXImageCache::shareInstanceWithPath(folder), cache);
    EXPECT_EQ(KXImageCache::initWithMemoryCacheClass("KXYYMemoryCache", "KXYYDiskCache", folder), cache);
    EXPECT_EQ(KXImageCache::shareInstanceWithPath(std::nullopt), nullptr);
    const auto standard = KXImageCache::initWithPath();
    EXPECT_EQ(standard->path(), platform.directory() / "home/Documents/defaultCache");
    EXPECT_EQ(KXImageCache::shareInstanceWithPath(std::nullopt), standard);

    cache->setImage(NSImage::initWithBitmap(shades()), "a");
    const auto memory = cache->memoryCache();
    cache->destory();
    EXPECT_EQ(KXImageCache::shareInstanceWithPath(folder), nullptr);
    EXPECT_EQ(memory->totalCount(), 0u);
    EXPECT_EQ(cache->memoryCache(), nullptr);
    EXPECT_EQ(cache->diskCache(), nullptr);
    EXPECT_EQ(sourceOf(*cache, "a", 3), 0);
    const auto next = open();
    cache->destory();  // once more: not its successor
    EXPECT_EQ(KXImageCache::shareInstanceWithPath(folder), next);
    EXPECT_NE(next, cache);
    EXPECT_EQ(sourceOf(*next, "a", 3), 2) << "what is on disk stays there";
}

TEST_F(KXImageCacheTest, StoresThatCannotBeMadeAreAbsent) {
    const std::tuple<KXStoreClass, KXStoreClass, const char*, bool, bool> rows[] = {
        {"KXMemoryCache", "KXDiskCache", "both", true, true},
        {"KXDiskCache", "KXMemoryCache", "exchanged", false, false},
        {nullptr, "no such class", "none", false, false},
        {KXMemoryCacheProtocol::classObject(), "KXYYDiskCache", "no instances", false, true},
        {"KXYYMemoryCache", "KXDiskCache", "", true, false},
    };
    for (const auto& [memory, disk, path, hasMemory, hasDisk] : rows) {
        const std::string place = *path ? platform.directory() / path : "";
        const auto cache = KXImageCache::initWithMemoryCacheClass(memory, disk, place);
        ASSERT_NE(cache, nullptr) << path;
        EXPECT_EQ(cache->memoryCache() != nullptr, hasMemory) << path;
        EXPECT_EQ(cache->diskCache() != nullptr, hasDisk) << path;
        cache->setImage(NSImage::initWithBitmap(shades()), "a");
        cache->removeImageForKey("b");
        EXPECT_EQ(cache->containsImageForKey("a"), path == std::string_view("both")) << path;
    }
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME"}) platform.environment().set(variable, "");
    EXPECT_EQ(KXImageCache::initWithPath(), nullptr) << "no documents folder";
    EXPECT_EQ(KXImageCache::shareInstanceWithPath(std::nullopt), nullptr);
}

class RaisingStore : public Subclass<RaisingStore, KXYYDiskCache> {
  public:
    Value objectForKey(KXCacheKey) override { throw NSException("Decoding", "of another version"); }
};

TEST_F(KXImageCacheTest, WhatRaisesOnTheQueueIsAMiss) {
    const testing::CapturedLog log;
    const auto cache = KXImageCache::initWithMemoryCacheClass(
        KXYYMemoryCache::classObject(), RaisingStore::classObject(), platform.directory() / "raising");
    EXPECT_EQ(sourceOf(*cache, "a", 3), 0);
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("of another version")));
    EXPECT_THROW(static_cast<void>(cache->getImageForKey("a")), NSException);
}

TEST_F(KXImageCacheTest, ImagesAreOnDiskAfterARestart) {
    const auto [file, bytes] = photograph();
    ASSERT_EQ(originOf(*file), bytes);
    const auto changed = photograph().first;
    changed->largestBitmap()->pixels()[5] = 0xFF102030;
    const auto painted = photograph().first;
    GraphicsContext::onBitmap(painted->largestBitmap())->fill({0, 0, 2, 2}, *NSColor::controlAccentColor());
    const auto dense = NSImage::initWithBitmap(shades(), 2);
    const auto drawn = NSImage::imageWithSize({4, 4}, [](NSRect rect) {
        GraphicsContext::current()->fill(rect, *NSColor::controlAccentColor());
        return true;
    });
    const std::pair<const char*, std::shared_ptr<NSImage>> rows[] = {
        {"file", file}, {"changed", changed}, {"painted", painted}, {"dense", dense}, {"drawn", drawn}};
    for (const auto& [key, image] : rows) open()->setImage(image, key);
    platform.restart();
    for (const auto& [key, image] : rows) {
        ASSERT_EQ(sourceOf(*open(), key, 3), 2) << key;
        const auto found = open()->getImageForKey(key);
        EXPECT_EQ(found->size(), image->size()) << key;
        EXPECT_EQ(pixelsOf(*found), pixelsOf(*image)) << key;
        EXPECT_EQ(originOf(*found) == bytes, image == file) << key;
    }
}

TEST_F(KXImageCacheTest, WhatIsDamagedOrNoImageIsAMiss) {
    const testing::CapturedLog log;
    open()->setImage(NSImage::initWithBitmap(shades()), "a", 2);
    open()->memoryCache()->setObject("text", "b");
    open()->diskCache()->setObject("text", "b");
    EXPECT_EQ(sourceOf(*open(), "b", 3), 0);
    const std::string segment = *open()->diskCache()->cachePathForKey("a");
    platform.restart();
    const std::string name = std::filesystem::relative(segment, platform.directory().path());
    std::string contents = platform.directory().read(name);
    contents[300] ^= 0x10;  // inside the picture
    platform.directory().write(name, contents);
    EXPECT_EQ(sourceOf(*open(), "a", 3), 0);
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("cache")));
}

TEST_F(KXImageCacheTest, CallsThatLackSomethingChangeNothing) {
    const testing::LenientMode lenient;
    const testing::CapturedLog log;
    const auto cache = open();
    cache->setImage(NSImage::initWithBitmap(shades()), "a");
    cache->setImage(nullptr, "a");
    cache->setImage(NSImage::initWithBitmap(shades()), std::nullopt);
    cache->removeImageForKey(std::nullopt);
    EXPECT_EQ(sourceOf(*cache, std::nullopt, 3), 0);
    EXPECT_EQ(log.lines().size(), 0u);
    cache->removeImageForKey("a", 3, nullptr);
    cache->containsImageForKey("a", 3, nullptr);
    cache->getImageForKey("a", 3, nullptr);
    drainQueues();
    EXPECT_EQ(log.lines().size(), 3u);
    EXPECT_THAT(log.lines(), Each(HasSubstr("without a callback")));
    EXPECT_EQ(cache->memoryCache()->totalCount(), 1u);
    EXPECT_EQ(cache->diskCache()->totalCount(), 1u);
}

}  // namespace
}  // namespace kx
