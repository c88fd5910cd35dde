// SPDX-License-Identifier: MIT

#include <atomic>
#include <fstream>

#include <gtest/gtest.h>

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Testing/ScopedQueues.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "support/OnThreads.h"

namespace kx {
namespace {

using testing::onThreads;

/// Its death is counted, so that none is lost and none dies twice.
class Counted : public Subclass<Counted, NSObject> {
  public:
    ~Counted() override { --alive; }
    bool init(std::string key) {
        ++alive;
        key_ = std::move(key);
        return NSObject::init();
    }
    const std::string& key() const { return key_; }
    static inline std::atomic<int> alive{0};

  private:
    std::string key_;
};

/// Threads set, read, remove and evict the same keys, over the split and the growth of the tables.
TEST(CacheThreadTest, MemoryCacheGivesWholeValues) {
    {
        const auto cache = KXMemoryCache::initWithNameSpace("x");
        cache->setCountLimit(6000);
        std::atomic<int> wrong{0};
        onThreads(4, [&](int thread) {
            std::uint32_t random = static_cast<std::uint32_t>(thread) + 1;
            for (int i = 0; i < 20'000; ++i) {
                random = random * 1664525 + 1013904223;
                const std::string key = std::to_string((random >> 8) % 8000);
                if (random >> 30 == 0) {
                    cache->setObject(Value(std::shared_ptr<NSObject>(make<Counted>(key))), key);
                } else if ((random >> 24) == 0x40) {
                    cache->removeObjectForKey(key);
                } else if (const auto found = objectCast<Counted>(cache->objectForKey(key).asObject())) {
                    wrong += found->key() == key ? 0 : 1;
                }
                if (i == 15'000 && thread == 0) cache->removeAllObjects();
            }
        });
        EXPECT_EQ(wrong, 0);
        const auto statistics = cache->statistics();
        EXPECT_LE(statistics.count, 6000u);
        EXPECT_GT(statistics.hits, 0u);
        std::uint64_t there = 0;
        for (int i = 0; i < 8000; ++i) there += cache->containsObjectForKey(std::to_string(i)) ? 1 : 0;
        EXPECT_EQ(there, statistics.count);
    }
    EXPECT_EQ(Counted::alive, 0);
}

/// A key that is never removed is always found, whatever moves around it.
TEST(CacheThreadTest, NoFalseMissWhileTablesGrow) {
    const auto cache = KXMemoryCache::initWithNameSpace("x");
    for (int i = 0; i < 100; ++i) cache->setObject(i, "kept " + std::to_string(i));
    std::atomic<bool> ended{false};
    std::atomic<int> missed{0};
    onThreads(3, [&](int thread) {
        if (thread == 0) {
            for (int i = 0; i < 30'000; ++i) cache->setObject(i, std::to_string(i));
            ended = true;
        }
        for (int i = 0; !ended; i = (i + 1) % 100) {
            if (thread == 1) cache->setObject(i, "kept " + std::to_string(i));
            missed += cache->objectForKey("kept " + std::to_string(i)) == Value(i) ? 0 : 1;
        }
    });
    EXPECT_EQ(missed, 0);
}

TEST(CacheThreadTest, DiskCacheOnThreadsAndTwoStores) {
    const testing::ScopedQueues queues;
    const testing::TemporaryDirectory directory;
    const std::shared_ptr<KXDiskCache> stores[] = {KXDiskCache::initWithPath(directory / "c"),
                                                   KXDiskCache::initWithPath(directory / "c")};
    std::atomic<int> wrong{0}, answers{0};
    onThreads(4, [&](int thread) {
        KXDiskCache& cache = *stores[thread % 2];
        for (int i = 0; i < 300; ++i) {
            const std::string key = std::to_string(thread) + " " + std::to_string(i % 50);
            cache.setObject(key + " " + std::to_string(i), key);
            if (cache.objectForKey(key) != Value(key + " " + std::to_string(i))) ++wrong;
            if (i % 100 == 0) cache.setObject(i, key + " durable", [&] { ++answers; });
        }
    });
    drainQueues();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(answers, 12);
    for (const auto& cache : {stores[0], stores[1], KXDiskCache::initWithPath(directory / "c")})
        EXPECT_EQ(cache->totalCount(), 4 * 50 + 4u);
}

/// The header page's tail is near the end of the numbers: whoever comes first puts a new page in its place.
TEST(CacheThreadTest, StoresThatMendOneFolderAtOnceLoseNothing) {
    constexpr int kStores = 4, kKeys = 5;
    const auto keyOf = [](int store, int i) { return std::to_string(store) + "." + std::to_string(i); };
    for (int round = 0; round < 30; ++round) {
        const testing::TemporaryDirectory folder;
        KXDiskCache::initWithPath(folder.path())->setObject("old", "old");
        std::fstream(folder / "header", std::ios::in | std::ios::out).seekp(20).write("\xFF\xFF\xFE\xFF", 4);
        std::vector<std::shared_ptr<KXDiskCache>> stores(kStores + 1);
        onThreads(kStores, [&](int store) {
            auto& own = stores[static_cast<std::size_t>(store)];
            own = KXDiskCache::initWithPath(folder.path());
            for (int i = 0; i < kKeys; ++i) own->setObject(i, keyOf(store, i));
        });
        stores.back() = KXDiskCache::initWithPath(folder.path());
        for (const auto& reader : stores) {
            EXPECT_EQ(reader->objectForKey("old"), Value("old")) << round;
            for (int store = 0; store < kStores; ++store)
                for (int i = 0; i < kKeys; ++i)
                    EXPECT_EQ(reader->objectForKey(keyOf(store, i)), Value(i))
                        << round << ": " << keyOf(store, i);
        }
    }
}

TEST(CacheThreadTest, LoadsThatAreJoinedCancelledAndOutdatedOnThreads) {
    const testing::ScopedQueues queues;
    const testing::TemporaryDirectory directory;
    const auto cache = KXCache::initWithPath("KXMemoryCache", "KXDiskCache", directory / "c");
    std::atomic<int> answers{0}, wrong{0};
    onThreads(4, [&](int thread) {
        for (int i = 0; i < 300; ++i) {
            std::stop_source stop;
            KXCacheLoadOptions options{.freshFor = i % 2 == 0 ? KXCacheLoadOptions::kForever : 0};
            options.cancellation = stop.get_token();
            options.queue = DispatchQueue::shared().shared_from_this();
            const int key = i % 3;
            cache->load(
                std::to_string(key), [key] { return key; }, options,
                [&, key](auto& answer) {
                    ++answers;
                    wrong += answer ? *answer != Value(key) : answer.error().systemError != ECANCELED;
                });
            if (i % 5 == thread) stop.request_stop();
            if (i % 7 == thread) cache->removeObjectForKey(std::to_string(key));
        }
    });
    drainQueues();
    EXPECT_EQ(answers, 4 * 300);
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace kx
