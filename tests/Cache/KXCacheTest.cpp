// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Cache/KXYYDiskCache.h>
#include <KXFoundation/Cache/KXYYMemoryCache.h>
#include <KXFoundation/Core/KXObject.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Testing/ScopedPlatform.h>
#include <KXFoundation/Testing/ScopedQueues.h>

namespace kx {
namespace {

/// Tells where it was made and what it was asked.
class ToldDiskCache : public Subclass<ToldDiskCache, KXYYDiskCache>, public KXNameSpaceInitializer {
  public:
    bool init(std::optional<std::string_view> path) override {
        place = "path " + std::string(path.value_or("none"));
        return true;
    }
    bool initWithNameSpace(std::optional<std::string_view> name) override {
        place = "name " + std::string(name.value_or("none"));
        return true;
    }
    Value objectForKey(KXCacheKey) override {
        ++asked;
        return object;
    }
    void objectForKey(KXCacheKey key, KXCacheObject block) override {
        if (beforeAnswer) beforeAnswer();
        block(std::string(*key), object);
    }
    std::string place;
    int asked = 0;
    Value object;
    std::function<void()> beforeAnswer;
};

struct KXCacheTest : ::testing::Test {
    testing::ScopedPlatform platform;
    testing::ScopedQueues queues;
};

TEST_F(KXCacheTest, StoresAreMadeFromTheirClasses) {
    static_cast<void>(ToldDiskCache::classObject());
    const std::tuple<KXStoreClass, KXStoreClass, bool> rows[] = {
        {KXYYMemoryCache::classObject(), KXYYDiskCache::classObject(), true},
        {"KXMemoryCache", "KXDiskCache", true},
        {"KXMemoryCache", "ToldDiskCache", true},
        {"KXDiskCache", "KXDiskCache", false},
        {"KXMemoryCache", "KXMemoryCache", false},
        {"KXMemoryCache", "NoSuchClass", false},
        {nullptr, "KXDiskCache", false},
        {NSObject::classObject(), "KXDiskCache", false},
    };
    const std::string place = platform.directory() / "cache";
    for (const auto& row : rows) {
        const auto& [memory, disk, made] = row;
        EXPECT_EQ(KXCache::initWithPath(memory, disk, place) != nullptr, made) << "row " << &row - rows;
        EXPECT_EQ(KXCache::initWithNameSpace(memory, disk, place) != nullptr, made) << "row " << &row - rows;
    }
}

TEST_F(KXCacheTest, WhereTheStoresLie) {
    const auto told = [](const std::shared_ptr<KXCache>& cache) {
        return objectCast<ToldDiskCache>(cache->diskCache())->place;
    };
    const auto& told_ = ToldDiskCache::classObject();
    EXPECT_EQ(told(KXCache::initWithPath("KXMemoryCache", told_, "/a/b")), "path /a/b");
    EXPECT_EQ(told(KXCache::initWithNameSpace("KXMemoryCache", told_, "pictures")), "name pictures");
    const auto named = KXCache::initWithNameSpace("KXMemoryCache", "KXDiskCache", "my/pictures");
    EXPECT_EQ(named->memoryCache()->nameSpace(), "my/pictures");
    EXPECT_THAT(*named->diskCache()->path(), ::testing::EndsWith("/my%2Fpictures"));

    // The inert stores.
    const auto inert = KXCache::initWithPath("KXYYMemoryCache", "KXYYDiskCache", "/a");
    EXPECT_EQ(inert->memoryCache()->nameSpace(), "/a");
    EXPECT_EQ(inert->diskCache()->path(), std::nullopt);
    for (const std::optional<std::string_view> path : {std::optional<std::string_view>(), {""}}) {
        const auto half = KXCache::initWithPath("KXYYMemoryCache", "KXYYDiskCache", path);
        ASSERT_TRUE(half);
        EXPECT_FALSE(half->diskCache());
        half->setObject(1, "a", [] { ADD_FAILURE(); });
        EXPECT_TRUE(half->objectForKey("a").isNull());
    }
}

TEST_F(KXCacheTest, ReadsMemoryFirstAndFillsItFromDisk) {
    const auto cache = KXCache::initWithPath("KXMemoryCache", ToldDiskCache::classObject(), "x");
    const auto disk = objectCast<ToldDiskCache>(cache->diskCache());
    EXPECT_TRUE(cache->objectForKey("a").isNull());
    disk->object = "from disk";
    EXPECT_EQ(cache->get<std::string>("a"), "from disk");
    EXPECT_EQ(cache->get<std::string>("a"), "from disk");
    EXPECT_EQ(disk->asked, 2) << "the second hit is memory's";

    disk->beforeAnswer = [&] { cache->memoryCache()->setObject("newer", "b"); };
    std::string answered;
    cache->objectForKey("b", [&](const std::string& key, const Value& object) {
        answered = key + " " + std::string(*object.asString());
    });
    EXPECT_EQ(answered, "b from disk");
    EXPECT_EQ(cache->get<std::string>("b"), "newer") << "filled only where memory lacks it";
}

TEST_F(KXCacheTest, CallbacksComeLaterOnBackgroundThreads) {
    const auto cache = KXCache::initWithPath("KXMemoryCache", "KXDiskCache", platform.directory() / "cache");
    Mutex mutex;
    std::vector<std::string> answers;
    const auto note = [&](const std::string& answer) {
        const MutexLock lock(mutex);
        answers.push_back(answer + " on " + std::string(DispatchQueue::currentQueueLabel()));
    };
    const auto take = [&] {
        drainQueues();
        const MutexLock lock(mutex);
        return std::exchange(answers, {});
    };
    using ::testing::ElementsAre;
    cache->setObject("1", "a", [&] { note("set"); });
    EXPECT_THAT(take(), ElementsAre("set on disk cache"));
    const auto ask = [&] {
        cache->containsObjectForKey("a", [&](auto& key, bool has) { note(key + (has ? " yes" : " no")); });
        EXPECT_TRUE(take().size() == 1);
        cache->objectForKey("a", [&](auto& key, auto& object) { note(key + " " + object.description()); });
        return take();
    };
    EXPECT_THAT(ask(), ElementsAre("a \"1\" on background"));
    cache->memoryCache()->removeAllObjects();
    EXPECT_THAT(ask(), ElementsAre("a \"1\" on disk cache"));
    EXPECT_THAT(ask(), ElementsAre("a \"1\" on background"));
    cache->removeObjectForKey("a", [&](auto& key) { note("removed " + key); });
    EXPECT_THAT(take(), ElementsAre("removed a on disk cache"));
    EXPECT_FALSE(cache->containsObjectForKey("a"));
    cache->setObject(2, "b");
    cache->removeAllObjectsWithBlock([&] { note("cleared"); });
    EXPECT_THAT(take(), ElementsAre("cleared on disk cache"));
    EXPECT_FALSE(cache->containsObjectForKey("b"));
    cache->objectForKey("b", nullptr);
    cache->containsObjectForKey("b", nullptr);
}

TEST_F(KXCacheTest, TypedValues) {
    const auto cache = KXCache::initWithPath("KXMemoryCache", "KXYYDiskCache", "x");
    cache->setObject(300, "number");
    cache->set(KXObject::objectWithID("nice"), "object");
    EXPECT_EQ(cache->get<int>("number"), 300);
    EXPECT_EQ(cache->get<std::uint8_t>("number"), std::nullopt);
    EXPECT_EQ(cache->get<double>("number"), 300.0);
    EXPECT_EQ(cache->get<std::string>("number"), std::nullopt);
    EXPECT_EQ(cache->get<Value>("number"), Value(300));
    EXPECT_EQ(cache->get<KXObject>("object")->id(), "nice");
    EXPECT_EQ(cache->get<KXCache>("object"), nullptr);
}

}  // namespace
}  // namespace kx
