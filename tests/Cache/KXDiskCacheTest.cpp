// SPDX-License-Identifier: MIT

#include <filesystem>

#include <gmock/gmock.h>

#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Foundation/NSSecureCoding.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedQueues.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

using namespace std::chrono_literals;
using Call = testing::FaultyFileSystem::Call;

class Harbour : public Subclass<Harbour, NSObject>, public NSSecureCoding {
  public:
    bool init(std::int64_t berths) {
        berths_ = berths;
        return NSObject::init();
    }
    bool isEqual(const NSObject& other) const override {
        return other.isKindOfClass(isa()) && static_cast<const Harbour&>(other).berths_ == berths_;
    }
    void encodeWithCoder(NSCoder& coder) const override { coder.encode("berths", berths_); }
    bool initWithCoder(NSCoder& coder) override {
        return !refuses && init(coder.decodeInteger("berths").value_or(0));
    }
    static inline bool refuses = false;

  private:
    std::int64_t berths_ = 0;
};

Value harbour(std::int64_t berths) {
    return Value(std::shared_ptr<NSObject>(make<Harbour>(berths)));
}

struct KXDiskCacheTest : ::testing::Test {
    std::shared_ptr<KXDiskCache> open(std::string_view name = "cache") const {
        return KXDiskCache::initWithPath(directory / name);
    }
    std::size_t segments() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(directory / "cache"))
            count += entry.path().filename().string().starts_with("segment-") ? 1 : 0;
        return count;
    }
    testing::TemporaryDirectory directory;
    std::shared_ptr<testing::FaultyFileSystem> files = std::make_shared<testing::FaultyFileSystem>();
    std::shared_ptr<testing::ManualClock> clock = std::make_shared<testing::ManualClock>();
    ScopedPort<FileSystem> filesScope{files};
    ScopedPort<Clock> clockScope{clock};
    testing::CapturedLog log;
    testing::ScopedQueues queues;
};

TEST_F(KXDiskCacheTest, WhatGoesInComesOutEqual) {
    registerSecureCoding<Harbour>();
    const Value values[] = {// Scalars.
                            true, false, -1, std::numeric_limits<std::int64_t>::min(), 0.1, Value::date(-1.5),
                            // Texts and bytes.
                            "", std::string("\0\xFF", 2), std::string(100'000, 'x'),
                            Value::data(std::vector<std::byte>()),
                            Value::data(std::vector<std::byte>(5000, std::byte{7})),
                            // What holds others.
                            ArrayBuilder().add(1).add("a").add(harbour(3)).build(),
                            DictionaryBuilder().set("k", ArrayBuilder().build()).build(), harbour(12)};
    const auto key = [&](const Value& value) { return "key " + std::to_string(&value - values); };
    const auto written = open();
    for (const Value& value : values) written->setObject(value, key(value));
    for (const auto& cache : {written, open()}) {
        for (const Value& value : values)
            EXPECT_EQ(cache->objectForKey(key(value)), value) << value.description();
        EXPECT_EQ(cache->totalCount(), std::size(values));
        EXPECT_TRUE(objectCast<Harbour>(cache->objectForKey(key(values[std::size(values) - 1])).asObject()));
    }
    EXPECT_THAT(log.lines(), ::testing::IsEmpty());
    written->setObject(Value(std::shared_ptr<NSObject>(make<NSObject>())), "no archive");
    EXPECT_FALSE(written->containsObjectForKey("no archive"));
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(KXDiskCacheTest, WhatAClassRefusesStaysForThoseThatTakeIt) {
    registerSecureCoding<Harbour>();
    const auto cache = open();
    cache->setObject(harbour(3), "harbour");
    Harbour::refuses = true;
    EXPECT_TRUE(cache->objectForKey("harbour").isNull());
    Harbour::refuses = false;
    EXPECT_EQ(cache->objectForKey("harbour"), harbour(3));
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(KXDiskCacheTest, KeysAndChanges) {
    const auto cache = open();
    const std::string odd[] = {"", std::string("\0", 1), std::string(65'535, 'x'), "\xFF\xFE", "../../etc"};
    for (const std::string& key : odd) {
        cache->setObject(1, key);
        cache->setObject("second " + key, key);
        cache->setObject(nullptr, key);
        EXPECT_EQ(cache->objectForKey(key), Value("second " + key));
        EXPECT_TRUE(cache->cachePathForKey(key));
    }
    EXPECT_EQ(cache->totalCount(), std::size(odd));
    cache->setObject(1, std::nullopt);
    cache->removeObjectForKey(std::nullopt);
    EXPECT_TRUE(cache->objectForKey(std::nullopt).isNull());
    cache->removeObjectForKey(odd[0]);
    cache->removeObjectForKey("never there");
    EXPECT_FALSE(open()->containsObjectForKey(odd[0]));
    EXPECT_TRUE(open()->containsObjectForKey(odd[1]));
    EXPECT_THAT(log.lines(), ::testing::IsEmpty());
    cache->setObject(1, std::string(65'536, 'x'));
    EXPECT_EQ(log.lines().size(), 1u) << "too long";

    cache->removeAllObjects();
    cache->setObject(1, "after");
    drainQueues();
    for (const auto& store : {cache, open()}) {
        EXPECT_EQ(store->totalCount(), 1u);
        EXPECT_EQ(store->objectForKey("after"), Value(1));
    }
    EXPECT_EQ(segments(), 1u) << "the former files are gone";
    EXPECT_EQ(KXDiskCache::initWithPath(""), nullptr);
    EXPECT_EQ(cache->nameSpace(), "cache");

    const std::string inPlaceOf = directory.write("mine", "mine") + std::string("\0/x", 3);
    EXPECT_FALSE(replaceFile(*files, inPlaceOf, "other")) << "and not what stands before the zero";
    open(std::string("b\0c", 3))->setObject(1, "a");
    EXPECT_EQ(directory.read("mine"), "mine");
    EXPECT_FALSE(std::filesystem::exists(directory / "b"));
}

TEST_F(KXDiskCacheTest, LimitsHoldAfterEverySet) {
    const auto cache = open();
    const std::string kilobyte(1024, 'x');
    const auto key = [](int number) { return "key " + std::to_string(number); };
    cache->setCountLimit(100);
    for (int i = 0; i < 1000; ++i) {
        cache->setObject(kilobyte, key(i));
        ASSERT_LE(cache->totalCount(), 100u);
        ASSERT_EQ(cache->objectForKey(key(0)), Value(kilobyte)) << "read again and again, it stays";
    }
    cache->setCostLimit(10 * 1024);
    EXPECT_LE(cache->totalCost(), 10'240u);
    for (int i = 0; i < 5000; ++i) {
        cache->setObject(kilobyte, key(i));
        ASSERT_LE(cache->totalCost(), 10'240u);
    }
    drainQueues();
    EXPECT_LE(segments(), 3u) << "what is dropped leaves the disk";
    EXPECT_EQ(open()->totalCount(), cache->totalCount());
    EXPECT_TRUE(cache->containsObjectForKey(key(4999)));
    cache->setObject(std::string(20'000, 'x'), key(4999));
    EXPECT_FALSE(cache->containsObjectForKey(key(4999))) << "beyond the limit, and the former one is gone";
    EXPECT_GT(cache->statistics().evictions, 5000u);
}

TEST_F(KXDiskCacheTest, WhatWasJustSetStaysWhateverWasRead) {
    const std::size_t sizes[] = {10, 100'000};  // the others are carried along, or are too large for that
    for (const std::size_t size : sizes) {
        const auto cache = open(std::to_string(size));
        const std::string keys[] = {"a", "b", "c"};
        cache->setCountLimit(std::size(keys));
        for (const std::string& key : keys) cache->setObject(std::string(size, 'x'), key);
        for (const std::string& key : keys) EXPECT_FALSE(cache->objectForKey(key).isNull());
        cache->setObject("new", "d");
        EXPECT_EQ(cache->objectForKey("d"), Value("new"));
        EXPECT_EQ(cache->totalCount(), std::size(keys));
    }
}

TEST_F(KXDiskCacheTest, OverwritingKeepsTheLogShort) {
    const auto cache = open();
    cache->setCostLimit(2 << 20);
    const std::string large(10'000, 'x');
    cache->setObject("whole", "broken");
    const auto segment = files->open(directory / "cache/segment-00000001", FileSystem::Mode::ReadWrite);
    ASSERT_TRUE((*segment)->writeAt(32 + 24 + 6, std::as_bytes(std::span("?", 1))));  // the payload
    cache->setObject("stays", "first");
    for (int i = 0; i < 1000; ++i)
        cache->setObject(large + std::to_string(i), "key " + std::to_string(i % 10));
    EXPECT_EQ(cache->objectForKey("first"), Value("stays")) << "carried along";
    EXPECT_EQ(cache->totalCount(), 11u) << "the broken one did not keep all after it";
    EXPECT_LT(cache->statistics().bytes, 2u << 20);
    EXPECT_EQ(open()->objectForKey("key 9"), Value(large + "999"));
}

TEST_F(KXDiskCacheTest, ValuesAgeFromTheirSet) {
    const auto cache = open();
    cache->setAgeLimit(10);
    cache->setObject(1, "a");
    clock->advance(6s);
    cache->setObject(2, "b");
    clock->advance(5s);
    EXPECT_FALSE(cache->containsObjectForKey("a"));
    EXPECT_TRUE(cache->objectForKey("a").isNull());
    EXPECT_EQ(cache->totalCount(), 1u);
    EXPECT_EQ(cache->objectForKey("b"), Value(2));
    const auto later = open();
    later->setAgeLimit(10);
    EXPECT_EQ(later->totalCount(), 1u);
}

TEST_F(KXDiskCacheTest, ASyncedSetAloneIsOneAppendAndOneSync) {
    const auto cache = open();
    cache->setObject(1, "first", [] {});
    drainQueues();
    files->resetCounts();
    int answers = 0;
    cache->setObject(2, "second", [&] { ++answers; });
    drainQueues();
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(files->calls(Call::Write), 1u);
    EXPECT_EQ(files->calls(Call::Sync), 1u);
    EXPECT_EQ(files->calls(Call::SyncDirectory), 0u);
    EXPECT_EQ(files->calls(), 3u) << "and one lock";

    // What waits together shares a sync.
    files->resetCounts();
    std::vector<std::function<void()>> all;
    cache->setObject(3, "last of a row", [&] {
        for (int i = 0; i < 50; ++i) cache->setObject(i, "k" + std::to_string(i), [&] { ++answers; });
    });
    drainQueues();
    EXPECT_EQ(answers, 51);
    EXPECT_EQ(files->calls(Call::Sync), 2u);
}

TEST_F(KXDiskCacheTest, AFailedSyncIsNotForgotten) {
    const auto cache = open();
    cache->setObject(1, "a");
    EXPECT_TRUE(cache->synchronize());
    cache->setObject(2, "b");
    files->failCall(1);
    EXPECT_FALSE(cache->synchronize());
    EXPECT_FALSE(cache->synchronize()) << "a sync that succeeds now tells nothing of what was not written";
    cache->removeAllObjects();
    drainQueues();
    cache->setObject(3, "c");
    EXPECT_TRUE(cache->synchronize()) << "what could not be written is not wanted any more";

    cache->setCostLimit(2 << 20);
    cache->setObject(std::string(300'000, 'x'), "fills a segment");
    cache->setObject(4, "in the next one");
    files->failCall(1, EMFILE);
    EXPECT_FALSE(cache->synchronize()) << "the former one could not be opened";
    EXPECT_TRUE(cache->synchronize());
    EXPECT_EQ(open()->totalCount(), 3u);
}

TEST_F(KXDiskCacheTest, OpeningReadsNoValueAndMapsOnce) {
    constexpr std::size_t kValues = 100'000;
    constexpr std::size_t kSize = 1024;
    const Value value = Value::data(std::vector<std::byte>(kSize, std::byte{1}));
    const auto cache = open();
    for (std::size_t i = 0; i < kValues; ++i) cache->setObject(value, "key " + std::to_string(i));
    files->resetCounts();
    const auto opened = open();
    EXPECT_EQ(opened->totalCount(), kValues);
    EXPECT_LT(files->bytesRead(), kValues * kSize / 8) << "tables, headers and keys alone";
    for (std::size_t i = 0; i < kValues; ++i)
        ASSERT_FALSE(opened->objectForKey("key " + std::to_string(i)).isNull());
    EXPECT_EQ(files->calls(Call::Map), 1 + segments()) << "the header, and each segment once";
}

TEST_F(KXDiskCacheTest, TwoStoresSeeEachOthersValues) {
    const auto one = open(), other = open();
    for (int i = 0; i < 40; ++i)
        (i % 2 ? one : other)->setObject(std::string(3 << 20, 'x'), std::to_string(i));
    EXPECT_EQ(one->totalCount(), 40u) << "also over a change of segments";
    other->setCountLimit(5);
    EXPECT_EQ(one->totalCount(), 5u);
    for (int i = 0; i < 9; ++i) one->setObject(i, "by one " + std::to_string(i));
    EXPECT_EQ(other->totalCount(), 5u) << "its limit holds for what comes from others too";
    one->setObject(39, "39");
    EXPECT_EQ(one->objectForKey("39"), other->objectForKey("39"));
    other->removeAllObjects();
    EXPECT_EQ(one->totalCount(), 0u);
    one->setObject(3, "c");
    EXPECT_EQ(other->objectForKey("c"), Value(3));
    EXPECT_THAT(log.lines(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace kx
