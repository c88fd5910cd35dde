// SPDX-License-Identifier: MIT

#include "pages/CachePage.h"

#include <chrono>
#include <functional>
#include <string>

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/KXCacheLoad.h>
#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

constexpr int kValues = 20;
constexpr std::size_t kValueSize = 1000;
constexpr std::uint64_t kMemoryCount = 12;
constexpr double kAge = 5;
constexpr std::size_t kCallers = 5;
constexpr double kFresh = 3;
constexpr double kStale = 60;

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

/// What a slow service would answer: how often it was asked. The page shows that it is.
KXCacheLoader CachePage::loader(Gallery& gallery) const {
    return [asked = asked_, &gallery, shown = std::weak_ptr(answers_)](const KXCacheLoading& loading) {
        DispatchQueue::main().async([&gallery, shown] {
            if (shown.lock()) gallery.rebuild();
        });
        DispatchQueue::shared().after(std::chrono::seconds(1), [asked, loading] {
            loading.complete(Value(static_cast<std::int64_t>(++*asked)));
        });
    };
}

void CachePage::ask(Gallery& gallery) {
    const auto answers = std::make_shared<std::vector<std::string>>(kCallers, "…");
    answers_ = answers;
    const KXCacheLoadOptions options{.freshFor = kFresh, .staleFor = kStale};
    for (std::size_t caller = 0; caller < kCallers; ++caller) {
        const auto take = [&gallery, caller, shown = std::weak_ptr(answers)](const Result<Value>& answer) {
            const auto all = shown.lock();
            if (!all) return;  // the page is gone, or asked again
            (*all)[caller] =
                answer ? std::to_string(answer->asInteger().value_or(0)) : answer.error().message();
            gallery.rebuild();
        };
        cache_->load("tide", loader(gallery), options, take);
    }
    gallery.rebuild();
}

void CachePage::addLoading(Column& column, Gallery& gallery) {
    column.caption(text("cache.caption.load"));
    column.paragraph(text("cache.load.explanation"));
    column.row({pushButton("cache.load", [this, &gallery] { ask(gallery); })});
    std::string answers;
    if (answers_) {
        for (const std::string& each : *answers_) answers += (answers.empty() ? "" : "  ") + each;
    }
    const KXCacheLoadStatistics statistics = cache_->loadStatistics();
    column.pair(text("cache.load.answers"), answers_ ? answers : text("general.none"));
    column.pair(text("cache.load.loads"), std::to_string(statistics.loads));
    column.pair(text("cache.load.joined"), std::to_string(statistics.joined));
    column.pair(text("cache.load.stale"), std::to_string(statistics.staleAnswers));
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
    column.pair(text("cache.age_limit"),
                age == 0 ? text("general.none") : std::to_string(static_cast<int>(age)) + " s");
    column.caption(text("cache.memory"));
    addStatistics(column, objectCast<KXMemoryCache>(cache_->memoryCache())->statistics());
    column.caption(text("cache.disk"));
    const auto disk = objectCast<KXDiskCache>(cache_->diskCache());
    if (disk) {
        addStatistics(column, disk->statistics());
        column.pair(text("cache.bytes"), std::to_string(disk->statistics().bytes));
        column.paragraph(shownPath(disk->path().value_or("")));
    } else {
        column.paragraph(text("general.none"));
    }
    addLoading(column, gallery);
}

}  // namespace gallery
