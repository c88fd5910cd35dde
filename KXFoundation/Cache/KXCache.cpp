// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Cache/KXYYDiskCache.h>
#include <KXFoundation/Cache/KXYYMemoryCache.h>
#include <KXFoundation/Cache/Load/CacheLoads.h>
#include <KXFoundation/Cache/StoreMaking.h>
#include <KXFoundation/Platform/Foundation/ApplicationFolder.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {

/// The stores of this library are found by name even if nobody has asked for their classes before.
void registerStores() {
    static_cast<void>(KXMemoryCache::classObject());
    static_cast<void>(KXDiskCache::classObject());
    static_cast<void>(KXYYMemoryCache::classObject());
    static_cast<void>(KXYYDiskCache::classObject());
}

std::optional<std::string> folderOf(std::optional<std::string_view> nameSpace) {
    const auto caches = baseDirectory(BaseDirectory::Cache);
    if (!caches || !nameSpace || nameSpace->empty()) return std::nullopt;
    return *caches + "/" + applicationFolder(*nameSpace);
}

bool initDiskCache(KXDiskCacheProtocol& store, std::optional<std::string_view> place, KXCache::Form form) {
    if (form == KXCache::Form::Path) return store.init(place);
    if (auto* own = dynamic_cast<KXNameSpaceInitializer*>(&store)) return own->initWithNameSpace(place);
    return store.init(folderOf(place));
}

std::shared_ptr<KXDiskCacheProtocol> madeDiskCache(KXStoreClass cls, std::optional<std::string_view> place,
                                                   KXCache::Form form) {
    auto store = allocatedStore<KXDiskCacheProtocol>(cls);
    return store && initDiskCache(*store, place, form) ? store : nullptr;
}

/// The block, before which the change ends; an absent one stays absent.
template <class... Arguments>
std::function<void(Arguments...)> ending(std::shared_ptr<CacheLoads::Change> change,
                                         std::function<void(Arguments...)> block) {
    if (!block) return nullptr;
    return [change = std::move(change), block = std::move(block)](Arguments... arguments) {
        change->end();
        block(arguments...);
    };
}

}  // namespace

KXStoreClass::KXStoreClass(std::string_view name) {
    registerStores();
    class_ = Class::named(name);
    if (!class_ && !name.empty())
        log(LogLevel::Warning, "cache: no class is named \"" + std::string(name) + "\"");
}

std::shared_ptr<KXCache> KXCache::initWithPath(KXStoreClass memoryCacheClass, KXStoreClass diskCacheClass,
                                               std::optional<std::string_view> path) {
    return make<KXCache>(memoryCacheClass, diskCacheClass, path, Form::Path);
}

std::shared_ptr<KXCache> KXCache::initWithNameSpace(KXStoreClass memoryCacheClass,
                                                    KXStoreClass diskCacheClass,
                                                    std::optional<std::string_view> nameSpace) {
    return make<KXCache>(memoryCacheClass, diskCacheClass, nameSpace, Form::NameSpace);
}

bool KXCache::init(KXStoreClass memoryCacheClass, KXStoreClass diskCacheClass,
                   std::optional<std::string_view> place, Form form) {
    if (!Super::init()) return false;
    if (!memoryCacheClass.conformsTo(KXMemoryCacheProtocol::classObject())) return false;
    if (!diskCacheClass.conformsTo(KXDiskCacheProtocol::classObject())) return false;
    memory_ = madeStore<KXMemoryCacheProtocol>(memoryCacheClass, place);
    disk_ = madeDiskCache(diskCacheClass, place, form);
    loads_ = std::make_shared<CacheLoads>(memory_, disk_);
    return true;
}

bool KXCache::containsObjectForKey(KXCacheKey key) {
    return (memory_ && memory_->containsObjectForKey(key)) || (disk_ && disk_->containsObjectForKey(key));
}

void KXCache::containsObjectForKey(KXCacheKey key, KXCacheContains block) {
    if (!block) return;
    if (memory_ && memory_->containsObjectForKey(key)) {
        DispatchQueue::shared().async(
            [block = std::move(block), key = std::string(key.value_or(""))] { block(key, true); });
    } else if (disk_) {
        disk_->containsObjectForKey(key, std::move(block));
    }
}

Value KXCache::inMemory(KXCacheKey key) const {
    return memory_ ? fromMemory(memory_->objectForKey(key)).value : Value();
}

Value KXCache::objectForKey(KXCacheKey key) {
    Value object = inMemory(key);
    if (!object.isNull() || !disk_) return object;
    object = disk_->objectForKey(key);
    if (!object.isNull() && memory_) memory_->setObject(object, key);
    return object;
}

void KXCache::objectForKey(KXCacheKey key, KXCacheObject block) {
    if (!block) return;
    if (Value object = inMemory(key); !object.isNull()) {
        DispatchQueue::shared().async([block = std::move(block), key = std::string(key.value_or("")),
                                       object = std::move(object)] { block(key, object); });
    } else if (disk_) {
        disk_->objectForKey(key, [memory = memory_, block = std::move(block)](const std::string& found,
                                                                              const Value& fromDisk) {
            const bool fills = memory && !fromDisk.isNull() && !memory->containsObjectForKey(found);
            if (fills) memory->setObject(fromDisk, found);
            block(found, fromDisk);
        });
    }
}

void KXCache::setObject(Value object, KXCacheKey forKey) {
    const CacheLoads::Change change(loads_, forKey);
    if (memory_) memory_->setObject(object, forKey);
    if (disk_) disk_->setObject(std::move(object), forKey);
}

void KXCache::setObject(Value object, KXCacheKey forKey, KXCacheDone block) {
    auto change = std::make_shared<CacheLoads::Change>(loads_, forKey);
    if (memory_) memory_->setObject(object, forKey);
    if (disk_) disk_->setObject(std::move(object), forKey, ending(std::move(change), std::move(block)));
}

void KXCache::removeObjectForKey(KXCacheKey key) {
    const CacheLoads::Change change(loads_, key);
    if (memory_) memory_->removeObjectForKey(key);
    if (disk_) disk_->removeObjectForKey(key);
}

void KXCache::removeObjectForKey(KXCacheKey key, KXCacheKeyDone block) {
    auto change = std::make_shared<CacheLoads::Change>(loads_, key);
    if (memory_) memory_->removeObjectForKey(key);
    if (disk_) disk_->removeObjectForKey(key, ending(std::move(change), std::move(block)));
}

void KXCache::removeAllObjects() {
    const CacheLoads::Change change(loads_);
    if (memory_) memory_->removeAllObjects();
    if (disk_) disk_->removeAllObjects();
}

void KXCache::removeAllObjectsWithBlock(KXCacheDone block) {
    auto change = std::make_shared<CacheLoads::Change>(loads_);
    if (memory_) memory_->removeAllObjects();
    if (disk_) disk_->removeAllObjectsWithBlock(ending(std::move(change), std::move(block)));
}

}  // namespace kx
