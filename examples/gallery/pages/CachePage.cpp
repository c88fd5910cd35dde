// SPDX-License-Identifier: MIT

#include "pages/CachePage.h"

#include <functional>
#include <string>

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Cache/KXMemoryCache.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

constexpr int kValues = 20;
constexpr std::size_t kValueSize = 1000;
constexpr std::uint64_t kMemoryCount = 12;
constexpr double kAge = 5;

std::string keyOf(int number) {
    return "value " + std::to_string(number);
}

template <class Statistics>
void addStatistics(Column& column, const Statistics& statistics) {
    column.pair(text("cache.values"), std::to_string(statistics.count));
    column.pair(text("cache.cost"), std::to_string(statistics.cost));
    column.pair(text("cache.hits"), std::to_string(statistics.hits));
    column.pair(text("cache.misses"), std::to_string(statistics.misses));
    column.pair(text("cache.evictions"), std::to_string(statistics.evictions));
}

std::shared_ptr<NSButton> button(std::string_view key, Gallery& gallery, std::function<void()> action) {
    return pushButton(key, [&gallery, action = std::move(action)] {
        action();
        gallery.rebuild();
    });
}

}  // namespace

CachePage::CachePage()
    : cache_(KXCache::initWithNameSpace("KXMemoryCache", "KXDiskCache", "org.kxfoundation.gallery")) {
    cache_->memoryCache()->setCountLimit(kMemoryCount);
    if (cache_->diskCache()) cache_->diskCache()->setCostLimit(1 << 20);
    fill();
    read();
}

void CachePage::fill() {
    for (int i = 0; i < kValues; ++i)
        cache_->setObject(std::string(kValueSize, static_cast<char>('a' + i)), keyOf(i));
}

/// The newest first: they are in memory. What memory has evicted comes from disk, and takes another's place
/// there.
void CachePage::read() {
    for (int i = kValues - 1; i >= 0; --i) static_cast<void>(cache_->objectForKey(keyOf(i)));
}

void CachePage::toggleAge() {
    const double age = cache_->memoryCache()->ageLimit() == 0 ? kAge : 0;
    cache_->memoryCache()->setAgeLimit(age);
    if (cache_->diskCache()) cache_->diskCache()->setAgeLimit(age);
}

void CachePage::build(Column& column, Gallery& gallery) {
    column.title(text("cache.title"));
    column.paragraph(text("cache.explanation"));
    column.space(12);
    column.row({button("cache.fill", gallery, [this] { fill(); }),
                button("cache.read", gallery, [this] { read(); }),
                button("cache.age", gallery, [this] { toggleAge(); }),
                button("button.clear", gallery, [this] { cache_->removeAllObjects(); })});
    const double age = cache_->memoryCache()->ageLimit();
    column.space(8);
    column.pair(text("cache.age_limit"),
                age == 0 ? text("general.none") : std::to_string(static_cast<int>(age)) + " s");
    column.caption(text("cache.memory"));
    addStatistics(column, objectCast<KXMemoryCache>(cache_->memoryCache())->statistics());
    column.caption(text("cache.disk"));
    const auto disk = objectCast<KXDiskCache>(cache_->diskCache());
    if (!disk) return column.paragraph(text("general.none"));
    addStatistics(column, disk->statistics());
    column.pair(text("cache.bytes"), std::to_string(disk->statistics().bytes));
    column.paragraph(shownPath(disk->path().value_or("")));
}

}  // namespace gallery
