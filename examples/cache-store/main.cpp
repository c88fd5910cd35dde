// SPDX-License-Identifier: MIT

#include <cstdio>
#include <cstdlib>

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/KXImageCache.h>
#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/Semaphore.h>

#include "FolderStore.h"

using namespace kx;

/// The library's memory store, but nothing larger than a thousand.
class SmallStore : public Subclass<SmallStore, KXMemoryCache> {
  public:
    bool init(std::optional<std::string_view> nameSpace) override {
        if (!Super::init(nameSpace)) return false;
        setCountLimit(1000);
        return true;
    }
    void setObjectWithCost(Value object, KXCacheKey forKey, std::uint64_t cost) override {
        if (object.asString().value_or("").size() < 1000)
            Super::setObjectWithCost(std::move(object), forKey, cost);
    }
};

int main() {
    const std::string place = std::string(std::getenv("HOME")) + "/harbours";
    static_cast<void>(SmallStore::classObject());  // from now on the class has a name
    const auto cache = KXCache::initWithPath("SmallStore", FolderStore::classObject(), place);
    cache->setObject("12 berths", "nice");
    cache->setObject(std::string(5000, '.'), "../genoa");
    std::printf("%d in memory, %d on disk\n", static_cast<int>(cache->memoryCache()->totalCount()),
                static_cast<int>(cache->diskCache()->totalCount()));

    // The next run of the application, so to say.
    const auto next = KXCache::initWithPath("SmallStore", FolderStore::classObject(), place);
    Semaphore done;
    next->objectForKey("nice", [&](const std::string& key, const Value& berths) {
        std::printf("%s: %s\n", key.c_str(), std::string(berths.asString().value_or("none")).c_str());
        done.signal();
    });
    done.wait();
    next->removeObjectForKey("nice");
    std::printf("nice is %s\n", next->containsObjectForKey("nice") ? "there" : "gone");

    std::printf(
        "a class that conforms to nothing: %s\n",
        KXCache::initWithPath("NSObject", FolderStore::classObject(), place) ? "a cache" : "no cache");
    const auto nowhere =
        KXCache::initWithPath("SmallStore", FolderStore::classObject(), "/dev/null/harbours");
    std::printf("a folder that cannot be: %s store on disk\n", nowhere->diskCache() ? "a" : "no");

    const auto images =
        KXImageCache::initWithMemoryCacheClass("SmallStore", FolderStore::classObject(), place + ".images");
    images->setImage(NSImage::imageWithSize({60, 40}, [](NSRect) { return true; }), "sea",
                     KXImageCache::kDisk);
    std::printf("an image from disk: %.0f points wide\n", images->getImageForKey("sea")->size().width);
}
