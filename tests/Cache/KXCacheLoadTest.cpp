// SPDX-License-Identifier: MIT

#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedPlatform.h>
#include <KXFoundation/Testing/ScopedQueues.h>
#include <KXFoundation/Testing/SimulatedWorld.h>

#include "support/OwnedTask.h"

namespace kx {
namespace {

using Failure = KXCacheLoadOptions::Failure;

std::string textOf(const Result<Value>& answer) {
    return !answer ? answer.error().message() : std::string(answer->asString().value_or("null"));
}
const std::string kCancelled = "cache load: failed (Operation canceled)";

struct KXCacheLoadTest : ::testing::Test {
    [[nodiscard]] std::shared_ptr<KXCache> opened() {
        return KXCache::initWithPath("KXMemoryCache", "KXDiskCache", platform.directory() / "cache");
    }
    [[nodiscard]] std::string load(KXCacheLoader loader, const KXCacheLoadOptions& options = {},
                                   KXCacheKey key = "nice") {
        std::string seen = "nothing";
        cache->load(key, std::move(loader), options, [&](auto& answer) {
            EXPECT_EQ(std::exchange(seen, textOf(answer)), "nothing");
            EXPECT_EQ(DispatchQueue::currentQueueLabel(), "main");
        });
        EXPECT_EQ(seen, "nothing") << "never before load() returns";
        drainQueues();
        return seen;
    }
    testing::ScopedPlatform platform;
    std::shared_ptr<testing::ManualClock> clock = std::make_shared<testing::ManualClock>();
    ScopedPort<Clock> scope{clock};
    std::shared_ptr<KXCache> cache = opened();
    testing::ScopedQueues queues;
};

TEST_F(KXCacheLoadTest, FreshStaleAndExpired) {
    constexpr bool kFails = true;
    const struct {
        int age;
        double freshFor, staleFor;
        bool fails;
        Failure failure;
        const char *answer, *stored;
        bool isStale;
    } rows[] = {
        {9, 10, 0, kFails, Failure::AnswerError, "old", "old", false},
        {10, 10, 0, !kFails, Failure::AnswerError, "new", "new", false},
        {10, 10, 10, !kFails, Failure::AnswerError, "old", "new", true},
        {20, 10, 10, !kFails, Failure::AnswerError, "new", "new", false},
        {10, 10, 10, kFails, Failure::AnswerError, "old", "old", true},
        {20, 10, 10, kFails, Failure::AnswerError, "why: busy", "old", false},
        {20, 10, 10, kFails, Failure::AnswerStale, "old", "old", true},
        {1'000'000, KXCacheLoadOptions::kForever, 0, kFails, Failure::AnswerError, "old", "old", false},
        {1'000'000, 10, KXCacheLoadOptions::kForever, !kFails, Failure::AnswerError, "old", "new", true},
        {0, 0, 0, !kFails, Failure::AnswerError, "new", "new", false},
        {0, NAN, -1, !kFails, Failure::AnswerError, "new", "new", false},
        {-60, 10, 10, !kFails, Failure::AnswerError, "new", "new", false},  // the clock was set back
    };
    enum { InMemory, OnDisk, AfterARestart, SetPlain, kWays };
    for (const auto& row : rows) {
        for (int way = 0; way < kWays; ++way) {
            SCOPED_TRACE("row " + std::to_string(&row - rows) + " way " + std::to_string(way));
            cache->removeAllObjects();
            if (way == SetPlain) cache->setObject("old", "nice");
            if (way != SetPlain) static_cast<void>(load([] { return "old"; }));
            if (way == OnDisk) cache->memoryCache()->removeAllObjects();
            if (way == AfterARestart) cache = opened();
            clock->setWallTime(clock->wallTime() + std::chrono::seconds(row.age));
            const auto before = cache->loadStatistics();
            const KXCacheLoader loader = [&]() -> Result<Value> {
                if (row.fails) return Error{ErrorKind::Busy, 0, "why"};
                return Value("new");
            };
            EXPECT_EQ(load(loader, {row.freshFor, row.staleFor, row.failure}), row.answer);
            EXPECT_EQ(cache->get<std::string>("nice"), row.stored) << "plainly read";
            EXPECT_EQ(opened()->get<std::string>("nice"), row.stored) << "plain on disk";
            const auto after = cache->loadStatistics();
            EXPECT_EQ(after.staleAnswers - before.staleAnswers, row.isStale);
            const auto hits = after.memoryHits + after.diskHits - before.memoryHits - before.diskHits;
            EXPECT_EQ(hits + (after.loads - before.loads), 1U);
        }
    }
}

TEST_F(KXCacheLoadTest, WhatALoaderMayDo) {
    static const Error denied{ErrorKind::Denied, 0, "berths"};
    const struct {
        KXCacheLoader loader;
        const char* want;
        bool isStored = false;
        KXCacheKey key = "nice";
    } rows[] = {
        {[] { return std::string("text"); }, "text", true},
        {[](const KXCacheLoading& loading) { return Value(loading.key()); }, "nice", true},
        {[](const KXCacheLoading& loading) {
             for (const char* text : {"later", "again"})
                 DispatchQueue::main().async([=] { loading.complete(Value(text)); });
         },
         "later", true},
        {[] { return Value(); }, "null"},
        {[] { return denied; }, "berths: denied"},
        {[]() -> Value { throw std::runtime_error("thrown"); }, "cache load: thrown: failed"},
        {[]() -> Value { throw 1; }, "cache load: the loader threw: failed"},
        {[](const KXCacheLoading&) {}, "cache load: the loader let go without an answer: failed"},
        {nullptr, "cache load: no loader: missing"},
        {[] { return "text"; }, "cache load: no key: missing", false, std::nullopt},
    };
    for (const auto& [loader, want, isStored, key] : rows) {
        cache->removeAllObjects();
        EXPECT_EQ(load(loader, {}, key), want);
        EXPECT_EQ(cache->get<std::string>(key).value_or("none"), isStored ? want : "none") << want;
    }
}

/// A loader that answers when the test says so.
struct HeldLoader {
    KXCacheLoader loader = [this](const KXCacheLoading& asked) { loading = asked; };
    std::optional<KXCacheLoading> loading;
};

TEST_F(KXCacheLoadTest, WhoeverCancelsIsAnsweredAtOnceAndTheLastOneEndsTheLoad) {
    const auto ask = [&](const HeldLoader& held, std::string& seen, const std::stop_source& stop,
                         double staleFor = 0) {
        const KXCacheLoadOptions options{
            .freshFor = 10, .staleFor = staleFor, .cancellation = stop.get_token()};
        cache->load("nice", held.loader, options, [&seen](auto& answer) { seen += textOf(answer); });
        drainQueues();
    };
    const auto stopped = [](const HeldLoader& held) { return held.loading->cancellation().stop_requested(); };
    std::stop_source one, other;
    std::string first, second, late;
    HeldLoader held, unused, next;
    ask(held, first, one);
    ask(unused, second, other);
    one.request_stop();
    drainQueues();
    EXPECT_EQ(first + second, kCancelled);
    EXPECT_FALSE(stopped(held));
    other.request_stop();
    drainQueues();
    EXPECT_EQ(second, kCancelled);
    EXPECT_TRUE(stopped(held));
    held.loading->complete(Value("too late"));
    ask(next, late, other);  // has cancelled before
    EXPECT_EQ(late, kCancelled);
    EXPECT_FALSE(next.loading || unused.loading || cache->containsObjectForKey("nice"));

    // A stale answer's renewal is nobody's to cancel, and outlives the cache.
    ASSERT_EQ(load([] { return "old"; }), "old");
    clock->advance(std::chrono::seconds(11));
    std::string stale;
    std::stop_source third;
    ask(next, stale, third, 60);
    third.request_stop();
    EXPECT_EQ(stale, "old");
    EXPECT_FALSE(stopped(next));
    const auto statistics = cache->loadStatistics();
    EXPECT_EQ(std::tuple(statistics.loads, statistics.joined, statistics.cancelled, statistics.failures),
              std::tuple(3U, 1U, 3U, 0U));
    cache = nullptr;
    next.loading->complete(Value("new"));
    drainQueues();
    EXPECT_EQ(opened()->get<std::string>("nice"), "new");
}

testing::OwnedTask await(const std::shared_ptr<KXCache>& cache, KXCacheLoader loader, std::string& seen) {
    seen = textOf(co_await cache->load("nice", std::move(loader)));
    seen += " on " + std::string(DispatchQueue::currentQueueLabel());
}

TEST_F(KXCacheLoadTest, ACoroutineAwaitsALoad) {
    std::string seen = "nothing";
    HeldLoader held;
    const auto destroyed = await(cache, held.loader, seen);
    drainQueues();
    destroyed.handle.destroy();
    EXPECT_TRUE(held.loading->cancellation().stop_requested());
    held.loading->complete(Value("too late"));
    drainQueues();
    EXPECT_EQ(seen, "nothing");
    for (const char* loaded : {"first", "second"}) {
        const auto task = await(
            cache, [loaded] { return loaded; }, seen);
        drainQueues();
        EXPECT_EQ(seen, "first on main");
        task.handle.destroy();
    }
    static_cast<void>(cache->load("nice", nullptr));  // never awaited
}

/// Something else happens in the middle of a change: it stands for another thread.
class InterruptedMemory : public Subclass<InterruptedMemory, KXMemoryCache> {
  public:
    void setObject(Value object, KXCacheKey key) override {
        interrupt();
        Super::setObject(std::move(object), key);
    }
    void removeObjectForKey(KXCacheKey key) override {
        interrupt();
        Super::removeObjectForKey(key);
    }
    void removeAllObjects() override {
        interrupt();
        Super::removeAllObjects();
    }
    static void interrupt() {
        if (const auto act = std::exchange(interruption, nullptr)) act();
    }
    static inline std::function<void()> interruption;
};

TEST_F(KXCacheLoadTest, ALoadThatBeginsDuringAChangeIsNotStored) {
    cache =
        KXCache::initWithPath(InterruptedMemory::classObject(), "KXDiskCache", platform.directory() / "c");
    const std::pair<std::function<void()>, const char*> rows[] = {
        {[&] { cache->setObject("set", "nice"); }, "set"},
        {[&] { cache->setObject("set", "nice", [] {}); }, "set"},
        {[&] { cache->removeObjectForKey("nice"); }, "none"},
        {[&] { cache->removeObjectForKey("nice", [](auto&) {}); }, "none"},
        {[&] { cache->removeAllObjects(); }, "none"},
        {[&] { cache->removeAllObjectsWithBlock([] {}); }, "none"},
    };
    for (const auto& [change, want] : rows) {
        HeldLoader held;
        std::string seen;
        cache->removeAllObjects();
        InterruptedMemory::interruption = [&] {
            cache->load("nice", held.loader, {}, [&](auto& answer) { seen = textOf(answer); });
            drainQueues();
        };
        change();
        drainQueues();
        held.loading->complete(Value("loaded"));
        drainQueues();
        EXPECT_EQ(seen, "loaded");
        EXPECT_EQ(cache->get<std::string>("nice").value_or("none"), want)
            << "row " << &change - &rows[0].first;
        EXPECT_EQ(load([] { return "later"; }, {.freshFor = 10}),
                  want == std::string("set") ? "set" : "later");
        EXPECT_EQ(cache->get<std::string>("nice"), want == std::string("set") ? "set" : "later")
            << "stored again";
    }
}

/// One caller only looks, without a loader: who asks meanwhile is answered by its own.
TEST(KXCacheLoadOrders, WhoHasNoLoaderTakesNobodyElsesAway) {
    for (std::uint64_t seed = 0; seed < 100; ++seed) {
        testing::SimulatedWorld world(seed);
        const auto cache = KXCache::initWithPath("KXMemoryCache", "KXYYDiskCache", "x");
        std::string seen;
        cache->load("a", nullptr, {}, [](auto&) {});
        DispatchQueue::shared().async([&] {
            cache->load(
                "a", [] { return "text"; }, {}, [&seen](auto& answer) { seen = textOf(answer); });
        });
        world.run();
        EXPECT_EQ(seen, "text") << "seed " << seed;
    }
}

}  // namespace
}  // namespace kx
