// SPDX-License-Identifier: MIT

#include <map>
#include <utility>

#include <KXFoundation/Cache/KXImageCache.h>
#include <KXFoundation/Cache/StoreMaking.h>
#include <KXFoundation/Cache/TypedValue.h>
#include <KXFoundation/Media/KXPhotoUtils.h>
#include <KXFoundation/Platform/Foundation/NSException.h>
#include <KXFoundation/Platform/Foundation/UserDirectories.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/AssociatedValues.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

/// The caches by path. The lock only keeps calls on a wrong thread harmless.
class Registry {
  public:
    std::shared_ptr<KXImageCache> find(const std::string& path) {
        const MutexLock lock(mutex_);
        const auto found = caches_.find(path);
        return found == caches_.end() ? nullptr : found->second;
    }
    /// False if the path has its cache.
    bool add(const std::string& path, const std::shared_ptr<KXImageCache>& cache) {
        const MutexLock lock(mutex_);
        return caches_.try_emplace(path, cache).second;
    }
    /// Not one that took the cache's place after it was destroyed before.
    void remove(const KXImageCache& cache) {
        std::shared_ptr<KXImageCache> removed;  // let go of after the lock
        const MutexLock lock(mutex_);
        const auto found = caches_.find(cache.path());
        if (found == caches_.end() || found->second.get() != &cache) return;
        removed = std::move(found->second);
        caches_.erase(found);
    }

  private:
    Mutex mutex_;
    std::map<std::string, std::shared_ptr<KXImageCache>> caches_ KX_GUARDED_BY(mutex_);
};
constinit ProcessState<Registry> registry;

std::optional<std::string> pathOrDefault(std::optional<std::string_view> path) {
    return path ? std::optional(std::string(*path)) : KXImageCache::_getDefaultCachePath();
}

/// Works on the shared background queue, then hands what came of it to the block on the main thread.
template <class Work, class Block>
void answerOnMain(Work work, Block block) {
    DispatchQueue::shared().async([work = std::move(work), block = std::move(block)] {
        DispatchQueue::main().async([answer = work(), block] { block(answer); });
    });
}

/// A key that outlives the call.
std::optional<std::string> kept(KXCacheKey key) {
    return key ? std::optional(std::string(*key)) : std::nullopt;
}

constexpr char kCostKey = 0;  // its address

/// The cost that was kept while the image had this change count.
std::optional<std::uint64_t> keptCost(const NSImage& image, std::uint64_t changeCount) {
    const Value kept = associatedValue(image, &kCostKey);
    const auto parts = kept.elements();
    if (parts.size() != 2 || parts[0] != Value(changeCount)) return std::nullopt;
    return static_cast<std::uint64_t>(parts[1].asInteger().value_or(0));
}

}  // namespace

bool KXImageCache::init(KXStoreClass memoryCacheClass, KXStoreClass diskCacheClass,
                        std::optional<std::string_view> path) {
    auto used = pathOrDefault(path);
    if (!Super::init() || !used || registry.get().find(*used)) return false;
    path_ = std::move(*used);
    Stores made{madeStore<KXMemoryCacheProtocol>(memoryCacheClass, path_),
                madeStore<KXDiskCacheProtocol>(diskCacheClass, path_)};
    {
        const MutexLock lock(mutex_);
        stores_ = std::move(made);
    }
    return registry.get().add(path_, self());
}

std::shared_ptr<KXImageCache> KXImageCache::shareInstanceWithPath(std::optional<std::string_view> path) {
    const auto used = pathOrDefault(path);
    return used ? registry.get().find(*used) : nullptr;
}

std::optional<std::string> KXImageCache::_getDefaultCachePath() {
    const auto documents = userDirectory(UserDirectory::Documents);
    return documents ? std::optional(*documents + "/defaultCache") : std::nullopt;
}

void KXImageCache::destory() {
    const auto alive = self();  // the registry's reference may be the last one
    registry.get().remove(*this);
    Stores dropped;
    {
        const MutexLock lock(mutex_);
        dropped = std::exchange(stores_, {});
    }
    if (dropped.memory) dropped.memory->removeAllObjects();
}

KXImageCache::Stores KXImageCache::stores() const {
    const MutexLock lock(mutex_);
    return stores_;
}

KXImageCache::Stores KXImageCache::stores(std::uint64_t type) const {
    Stores chosen = stores();
    if (!(type & kMemory)) chosen.memory = nullptr;
    if (!(type & kDisk)) chosen.disk = nullptr;
    return chosen;
}

void KXImageCache::setImage(const std::shared_ptr<NSImage>& image, KXCacheKey forKey,
                            std::uint64_t withType) {
    if (!image || !forKey) return;
    const auto [memory, disk] = stores(withType);
    const Value object(image);
    if (memory) memory->setObjectWithCost(object, forKey, imageCost(image));
    if (disk) disk->setObject(object, forKey);
}

void KXImageCache::removeImageForKey(KXCacheKey key, std::uint64_t withType) {
    const auto [memory, disk] = stores(withType);
    if (memory) memory->removeObjectForKey(key);
    if (disk) disk->removeObjectForKey(key);
}

void KXImageCache::removeImageForKey(KXCacheKey key, std::uint64_t withType, Removed block) {
    if (!block) return callerError("KXImageCache: removeImageForKey without a callback");
    answerOnMain(
        [self = self(), key = kept(key), withType] { return self->removeImageForKey(key, withType), true; },
        [block = std::move(block)](bool) { block(); });
}

bool KXImageCache::containsImageForKey(KXCacheKey key, std::uint64_t withType) {
    const auto [memory, disk] = stores(withType);
    return (memory && memory->containsObjectForKey(key)) || (disk && disk->containsObjectForKey(key));
}

void KXImageCache::containsImageForKey(KXCacheKey key, std::uint64_t withType, Contains block) {
    if (!block) return callerError("KXImageCache: containsImageForKey without a callback");
    answerOnMain(
        [self = self(), key = kept(key), withType] { return self->containsImageForKey(key, withType); },
        std::move(block));
}

KXImageCache::Answer KXImageCache::find(KXCacheKey key, std::uint64_t type) const {
    const auto [memory, disk] = stores(type);
    if (auto image = memory ? typedValue<NSImage>(memory->objectForKey(key)) : nullptr)
        return {std::move(image), kMemory};
    if (auto image = disk ? typedValue<NSImage>(disk->objectForKey(key)) : nullptr)
        return {std::move(image), kDisk};
    return {};
}

std::shared_ptr<NSImage> KXImageCache::getImageForKey(KXCacheKey key, std::uint64_t withType) {
    return find(key, withType).image;
}

/// On the queue, where nobody could catch what a class's own decoding raises.
KXImageCache::Answer KXImageCache::findOnQueue(KXCacheKey key, std::uint64_t type) const {
    try {
        return find(key, type);
    } catch (const NSException& exception) {
        log(LogLevel::Warning, "image cache: " + exception.reason());
        return {};
    }
}

void KXImageCache::getImageForKey(KXCacheKey key, std::uint64_t withType, Found block) {
    if (!block) return callerError("KXImageCache: getImageForKey without a callback");
    answerOnMain([self = self(), key = kept(key), withType] { return self->findOnQueue(key, withType); },
                 [block = std::move(block)](const Answer& answer) { block(answer.image, answer.source); });
}

std::uint64_t KXImageCache::imageCost(const std::shared_ptr<NSImage>& image) {
    if (!image) return 0;
    const std::uint64_t changeCount = image->changeCount();
    if (const auto cost = keptCost(*image, changeCount)) return *cost;
    const auto data = KXPhotoUtils::imgToData(image, 1.0);
    const std::uint64_t cost = data ? data->size() : 0;
    setAssociatedValue(*image, &kCostKey, ArrayBuilder().add(changeCount).add(cost).build());
    return cost;
}

}  // namespace kx
