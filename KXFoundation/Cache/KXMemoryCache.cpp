// SPDX-License-Identifier: MIT

#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Platform/Runtime/MemoryPressure.h>

namespace kx {

bool KXMemoryCache::init(std::optional<std::string_view> nameSpace) {
    if (!NSObject::init()) return false;
    nameSpace_ = nameSpace;
    cache_ = make<NSCache>();
    pressure_ = MemoryPressure::slot().current().observe([cache = cache_] { cache->keepShare(0.5); });
    return true;
}

bool KXMemoryCache::containsObjectForKey(KXCacheKey key) {
    return key && cache_->containsObjectForKey(*key);
}

Value KXMemoryCache::objectForKey(KXCacheKey key) {
    return key ? cache_->objectForKey(*key) : Value();
}

void KXMemoryCache::setObjectWithCost(Value object, KXCacheKey forKey, std::uint64_t cost) {
    if (forKey) cache_->setObject(std::move(object), *forKey, cost);
}

void KXMemoryCache::removeObjectForKey(KXCacheKey key) {
    if (key) cache_->removeObjectForKey(*key);
}

}  // namespace kx
