// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/KXImageCache.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/DetachedTask.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>

using namespace kx;

/// What neither store has is asked for, once for all who want it at the same time.
DetachedTask load(std::shared_ptr<KXCache> cache) {
    const auto ask = [] { return std::string("40 berths"); };  // on a background thread
    for (const char* time : {"first", "then"}) {
        const Result<Value> berths = co_await cache->load("genoa", ask, {.freshFor = 60});
        const std::string text = berths ? std::string(*berths->asString()) : berths.error().message();
        std::printf("genoa, %s: %s\n", time, text.c_str());
    }
    std::printf("asked %d time\n", static_cast<int>(cache->loadStatistics().loads));
    EventLoop::main().stop();
}

int main() {
    const auto cache = KXCache::initWithNameSpace("KXMemoryCache", "KXDiskCache", "org.example.harbours");
    cache->setObject("12 berths", "nice");
    cache->memoryCache()->removeAllObjects();  // as after a restart: it comes from disk
    std::printf("nice: %s\n", cache->get<std::string>("nice").value_or("none").c_str());
    std::printf("kiel: %s\n", cache->get<std::string>("kiel").value_or("none").c_str());
    load(cache);
    EventLoop::main().run();

    const auto images = KXImageCache::initWithPath(*cache->diskCache()->path() + ".images");
    images->setImage(NSImage::imageNamed("boat"), "boat", KXImageCache::kDisk);
    images->getImageForKey(
        "boat", KXImageCache::kBoth, [](const std::shared_ptr<NSImage>& image, auto source) {
            std::printf("a picture of %.0f x %.0f points from %s\n", image->size().width,
                        image->size().height, source == KXImageCache::kMemory ? "memory" : "disk");
            EventLoop::main().stop();
        });
    EventLoop::main().run();
}
