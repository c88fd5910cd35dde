// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>

#include <KXFoundation/Cache/KXCacheLoad.h>
#include <KXFoundation/Cache/KXDiskCacheProtocol.h>
#include <KXFoundation/Cache/KXMemoryCacheProtocol.h>
#include <KXFoundation/Cache/KXStoreClass.h>
#include <KXFoundation/Cache/TypedValue.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A two-level cache: a memory store in front of a disk store. Reads try memory first and fill it from disk;
/// writes and removals change memory, then disk. Objects pass through untouched.
///
///     auto cache = KXCache::initWithNameSpace("KXMemoryCache", "KXDiskCache", "org.example.harbours");
///     cache->setObject("12 berths", "nice");
///     std::optional<std::string> berths = cache->get<std::string>("nice");
///
/// Or in one call, with the way to make what neither store has: load().
///
/// The facade takes no lock: it allows on several threads what its stores allow. Callbacks come on background
/// threads: hits in memory on the shared background queue, all else on the disk store's threads. An absent
/// store holds nothing, and never calls a callback.
class KX_EXPORT KXCache : public Subclass<KXCache, NSObject> {
  public:
    enum class Form : bool { Path, NameSpace };

    /// Makes both stores: the memory store with the path as its namespace, the disk store at the path. None
    /// if a class does not conform to its protocol; a store whose initialiser refuses is absent.
    [[nodiscard]] static std::shared_ptr<KXCache> initWithPath(KXStoreClass memoryCacheClass,
                                                               KXStoreClass diskCacheClass,
                                                               std::optional<std::string_view> path);
    /// The same with a namespace. A disk store without an initialiser for one (KXNameSpaceInitializer) is
    /// made at a folder of that name under the user's cache folder, and is absent where there is none.
    [[nodiscard]] static std::shared_ptr<KXCache> initWithNameSpace(
        KXStoreClass memoryCacheClass, KXStoreClass diskCacheClass,
        std::optional<std::string_view> nameSpace);
    bool init(KXStoreClass memoryCacheClass, KXStoreClass diskCacheClass,
              std::optional<std::string_view> place, Form form);

    [[nodiscard]] bool containsObjectForKey(KXCacheKey key);
    /// Does nothing without a callback.
    void containsObjectForKey(KXCacheKey key, KXCacheContains block);
    /// Null if there is none. What came from disk is put into memory.
    [[nodiscard]] Value objectForKey(KXCacheKey key);
    /// Does nothing without a callback. What came from disk is put into memory unless that has the key by
    /// then.
    void objectForKey(KXCacheKey key, KXCacheObject block);
    void setObject(Value object, KXCacheKey forKey);
    void setObject(Value object, KXCacheKey forKey, KXCacheDone block);
    void removeObjectForKey(KXCacheKey key);
    void removeObjectForKey(KXCacheKey key, KXCacheKeyDone block);
    void removeAllObjects();
    void removeAllObjectsWithBlock(KXCacheDone block);

    /// The key's value from memory, else from disk, else from the loader, whose value is stored in both. One
    /// load serves all who ask for the key meanwhile, each by its own options; the loader is that of one of
    /// them. A key that is set or removed through this object while a load is under way outdates the load:
    /// that answers those who asked before, and is not stored. Where the two meet in the moment of storing,
    /// the key may be left without a value, never with the load's. A failure is not stored either.
    ///
    ///     cache->load("nice", [] { return askForBerths("nice"); }, {.freshFor = 60, .staleFor = 600},
    ///                 [](const Result<Value>& berths) { if (berths) show(*berths); });
    ///     const Result<Value> berths = co_await cache->load("nice", askForBerths, {.freshFor = 60});
    ///
    /// Never waits; the completion is called once, in a later block of the queue of the options; without one
    /// the value is fetched for later. An absent key is answered ErrorKind::Missing; so is an absent loader
    /// where one is needed. Any thread, if the stores allow that: they are read here and on the shared queue,
    /// and written there. Under way when this object goes, a load goes on to its end.
    ///
    /// In the memory store itself, but not through this object, a loaded value is a KXLoadedValue.
    void load(KXCacheKey key, KXCacheLoader loader, KXCacheLoadOptions options, KXCacheLoaded completion);
    [[nodiscard]] KXCacheLoadAnswer load(KXCacheKey key, KXCacheLoader loader,
                                         KXCacheLoadOptions options = {});
    [[nodiscard]] KXCacheLoadStatistics loadStatistics() const;

    [[nodiscard]] const std::shared_ptr<KXMemoryCacheProtocol>& memoryCache() const noexcept {
        return memory_;
    }
    [[nodiscard]] const std::shared_ptr<KXDiskCacheProtocol>& diskCache() const noexcept { return disk_; }

    /// The object as a T: std::string, an arithmetic type, Value, or an object class, which gives a
    /// std::shared_ptr. Absent if there is none, or one of another type.
    template <class T>
    [[nodiscard]] auto get(KXCacheKey key) {
        return typedValue<T>(objectForKey(key));
    }
    /// Sets an object of a class.
    template <std::derived_from<NSObject> T>
    void set(std::shared_ptr<T> object, KXCacheKey forKey) {
        setObject(Value(std::shared_ptr<NSObject>(std::move(object))), forKey);
    }

  private:
    [[nodiscard]] Value inMemory(KXCacheKey key) const;

    std::shared_ptr<KXMemoryCacheProtocol> memory_;
    std::shared_ptr<KXDiskCacheProtocol> disk_;
    std::shared_ptr<CacheLoads> loads_;
};

}  // namespace kx
