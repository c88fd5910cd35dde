// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Cache/CacheKey.h>
#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Cache/KXDiskCacheProtocol.h>
#include <KXFoundation/Cache/KXImageCacheProtocal.h>
#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Cache/KXMemoryCacheProtocol.h>
#include <KXFoundation/Cache/KXStoreClass.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

/// Images under text keys, in a memory store, a disk store or both, as each call says. There is one cache to
/// a path: whoever names the path gets the same one, until destory().
///
///     auto cache = KXImageCache::initWithPath(folder);
///     cache->setImage(photo, "harbour");
///     cache->getImageForKey("harbour", KXImageCache::kBoth, [](std::shared_ptr<NSImage> image, auto source)
///     {
///         ...  // on the main thread; source is 1 for memory, 2 for disk, 0 for neither
///     });
///
/// Caches are made, looked up and destroyed on one thread, as a rule the main thread. All else may be called
/// on any thread that the stores allow; the library's own allow all. The forms with a callback work on the
/// shared background queue and call back on the main thread; a missing callback is a caller error, and
/// nothing is done. An image from disk is decoded anew each time, and not put into memory.
///
/// On disk lie the encoded bytes that an image was read from, where it has not been changed since, and
/// otherwise its pixels, packed without loss.
class KX_EXPORT KXImageCache : public Subclass<KXImageCache, NSObject>, public KXImageCacheProtocal {
  public:
    // Which stores; other bits are ignored. The first two also say where an image came from, 0 being nowhere.
    static constexpr std::uint64_t kMemory = 1;
    static constexpr std::uint64_t kDisk = 2;
    static constexpr std::uint64_t kBoth = kMemory | kDisk;

    using Removed = std::function<void()>;
    using Contains = std::function<void(bool contains)>;
    using Found = std::function<void(std::shared_ptr<NSImage> image, std::uint64_t source)>;

    /// The cache of that path: the one that is registered, whatever its stores, or else a new one, with the
    /// path as the memory store's namespace and the disk store's place. No path is the default path; none
    /// where there is no such path either. A store whose class does not conform, or whose initialiser
    /// refuses, is absent. A subclass names itself: `KXImageCache::initWithMemoryCacheClass<MyCache>(...)`.
    template <std::derived_from<KXImageCache> Made = KXImageCache>
    [[nodiscard]] static std::shared_ptr<KXImageCache> initWithMemoryCacheClass(
        KXStoreClass memoryCacheClass, KXStoreClass diskCacheClass, std::optional<std::string_view> path) {
        if (auto made = make<Made>(memoryCacheClass, diskCacheClass, path)) return made;
        return shareInstanceWithPath(path);
    }
    /// The same with the library's own stores.
    [[nodiscard]] static std::shared_ptr<KXImageCache> initWithPath(
        std::optional<std::string_view> path = std::nullopt) {
        return initWithMemoryCacheClass(KXMemoryCache::classObject(), KXDiskCache::classObject(), path);
    }
    /// Registers the object; false where the path has its cache already, or there is no path.
    bool init(KXStoreClass memoryCacheClass, KXStoreClass diskCacheClass,
              std::optional<std::string_view> path);

    /// The registered cache of the path, or of the default path if it is absent; none if there is none.
    [[nodiscard]] static std::shared_ptr<KXImageCache> shareInstanceWithPath(
        std::optional<std::string_view> path);
    /// "defaultCache" in the user's documents folder; absent where the user has none.
    [[nodiscard]] static std::optional<std::string> _getDefaultCachePath();

    /// Takes the cache out of the registry, empties its memory store and lets go of both: from then on it
    /// holds nothing. What is on disk stays there.
    void destory();

    /// An absent image or key changes nothing.
    void setImage(const std::shared_ptr<NSImage>& image, KXCacheKey forKey, std::uint64_t withType = kBoth);
    void removeImageForKey(KXCacheKey key, std::uint64_t withType = kBoth);
    void removeImageForKey(KXCacheKey key, std::uint64_t withType, Removed block);
    [[nodiscard]] bool containsImageForKey(KXCacheKey key, std::uint64_t withType = kBoth);
    void containsImageForKey(KXCacheKey key, std::uint64_t withType, Contains block);
    /// None if there is none, or something that is no image.
    [[nodiscard]] std::shared_ptr<NSImage> getImageForKey(KXCacheKey key, std::uint64_t withType = kBoth);
    void getImageForKey(KXCacheKey key, std::uint64_t withType, Found block);

    /// The bytes that the image takes as a JPEG of the best quality, 0 if it cannot be encoded. Found by
    /// encoding it, once: the number is kept with the image until that changes (NSImage::changeCount). A
    /// subclass may count otherwise.
    [[nodiscard]] std::uint64_t imageCost(const std::shared_ptr<NSImage>& image) override;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    [[nodiscard]] std::shared_ptr<KXMemoryCacheProtocol> memoryCache() const { return stores().memory; }
    [[nodiscard]] std::shared_ptr<KXDiskCacheProtocol> diskCache() const { return stores().disk; }

  private:
    struct Stores {
        std::shared_ptr<KXMemoryCacheProtocol> memory;
        std::shared_ptr<KXDiskCacheProtocol> disk;
    };
    struct Answer {
        std::shared_ptr<NSImage> image;
        std::uint64_t source = 0;
    };
    [[nodiscard]] Stores stores() const;
    [[nodiscard]] Stores stores(std::uint64_t type) const;
    [[nodiscard]] Answer find(KXCacheKey key, std::uint64_t type) const;
    [[nodiscard]] Answer findOnQueue(KXCacheKey key, std::uint64_t type) const;

    std::string path_;
    mutable Mutex mutex_;
    Stores stores_ KX_GUARDED_BY(mutex_);
};

}  // namespace kx
