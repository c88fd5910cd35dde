// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <random>

#include <gmock/gmock.h>

#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Platform/Runtime/MemoryPressure.h>
#include <KXFoundation/Testing/ManualClock.h>

namespace kx {
namespace {

using namespace std::chrono_literals;

class FakePressure final : public MemoryPressure {
  public:
    std::shared_ptr<void> observe(Observer observer) override {
        auto kept = std::make_shared<Observer>(std::move(observer));
        last_ = kept;
        return kept;
    }
    void rise() {
        if (const auto observer = last_.lock()) (*observer)();
    }

  private:
    std::weak_ptr<Observer> last_;
};

struct KXMemoryCacheTest : ::testing::Test {
    std::string keysLeft(std::string_view among) const {
        std::string left;
        for (const char key : among) {
            if (cache->containsObjectForKey(std::string_view(&key, 1))) left += key;
        }
        return left;
    }
    std::shared_ptr<testing::ManualClock> clock = std::make_shared<testing::ManualClock>();
    std::shared_ptr<FakePressure> pressure = std::make_shared<FakePressure>();
    ScopedPort<Clock> clockScope{clock};
    ScopedPort<MemoryPressure> pressureScope{pressure};
    std::shared_ptr<KXMemoryCache> cache = KXMemoryCache::initWithNameSpace("harbours");
};

TEST_F(KXMemoryCacheTest, LimitsHoldAfterEverySet) {
    const struct {
        const char* what;
        std::uint64_t countLimit, costLimit;
        std::string_view steps;  // a lower-case letter sets it at cost 10, an upper-case one reads it
        std::string_view left;
    } rows[] = {
        {"no limit", 0, 0, "abcde", "abcde"},
        {"the oldest leaves", 3, 0, "abcde", "cde"},
        {"what was read is spared", 3, 0, "abcAd", "acd"},
        {"until the hand has been round", 3, 0, "abcAdefg", "afg"},
        {"set again, it is new", 3, 0, "abcad", "acd"},
        {"cost", 0, 25, "abcd", "cd"},
        {"both", 3, 25, "abcd", "cd"},
        {"one that costs more than the limit is not kept", 0, 9, "ab", ""},
    };
    for (const auto& row : rows) {
        cache = KXMemoryCache::initWithNameSpace("x");
        cache->setCountLimit(row.countLimit);
        cache->setCostLimit(row.costLimit);
        for (const char step : row.steps) {
            const char key = static_cast<char>(std::tolower(step));
            const std::string_view text(&key, 1);
            if (key == step) {
                cache->setObjectWithCost(step, text, 10);
            } else {
                EXPECT_FALSE(cache->objectForKey(text).isNull()) << row.what;
            }
            EXPECT_TRUE(row.countLimit == 0 || cache->totalCount() <= row.countLimit) << row.what;
            EXPECT_TRUE(row.costLimit == 0 || cache->totalCost() <= row.costLimit) << row.what;
        }
        EXPECT_EQ(keysLeft("abcdefg"), row.left) << row.what;
        EXPECT_EQ(cache->totalCost(), 10 * row.left.size()) << row.what;
    }
}

TEST_F(KXMemoryCacheTest, LowerLimitsHoldAtOnceInALargeCacheToo) {
    for (int i = 0; i < 20'000; ++i) cache->setObjectWithCost(i, std::to_string(i), 2);
    for (int i = 0; i < 20'000; ++i) ASSERT_EQ(cache->objectForKey(std::to_string(i)), Value(i));
    cache->setCountLimit(1000);
    EXPECT_EQ(cache->totalCount(), 1000u);
    cache->setCostLimit(500);
    EXPECT_EQ(cache->totalCost(), 500u);
    for (int i = 0; i < 3000; ++i) cache->setObjectWithCost(i, "new" + std::to_string(i), 2);
    EXPECT_EQ(cache->totalCount(), 250u);
    EXPECT_EQ(cache->statistics().evictions, 22'750u);
    cache->removeAllObjects();
    EXPECT_EQ(cache->totalCount() + cache->totalCost(), 0u);
}

TEST_F(KXMemoryCacheTest, ValuesAgeFromTheirSet) {
    cache->setAgeLimit(10);
    cache->setObject(1, "a");
    clock->advance(6s);
    cache->setObject(2, "b");
    clock->advance(4s);
    EXPECT_EQ(keysLeft("ab"), "ab") << "just as old as allowed";
    clock->advance(1s);
    EXPECT_EQ(keysLeft("ab"), "b");
    EXPECT_EQ(cache->totalCount(), 1u);
    cache->setCountLimit(2);
    static_cast<void>(cache->objectForKey("b"));
    cache->setObject(3, "c");
    clock->advance(6s);
    cache->setObject(4, "d");
    EXPECT_EQ(keysLeft("bcd"), "cd") << "the too old one leaves, read or not";
    cache->removeAllObjects();
    cache->setObject(2, "b");
    cache->setAgeLimit(std::nan(""));
    clock->advance(1000h);
    EXPECT_EQ(keysLeft("b"), "b");
}

TEST_F(KXMemoryCacheTest, ValuesAreSharedAndLeaveUnderPressure) {
    const Value bytes = Value::data(std::vector<std::byte>(100));
    for (const char key : std::string_view("abcdefgh")) cache->setObject(bytes, std::string_view(&key, 1));
    EXPECT_EQ(cache->objectForKey("h").asData()->data(), bytes.asData()->data());
    pressure->rise();
    EXPECT_EQ(keysLeft("abcdefgh"), "efgh");
    const std::weak_ptr<KXMemoryCache> watch = cache;
    cache = nullptr;
    EXPECT_TRUE(watch.expired());
    pressure->rise();  // nobody is told
}

TEST_F(KXMemoryCacheTest, AbsentAndOddKeys) {
    const std::string odd[] = {"", std::string("\0", 1), std::string(1 << 20, 'x'), "\xFF\xFE"};
    for (const std::string& key : odd) {
        cache->setObject(key, key);
        EXPECT_EQ(cache->objectForKey(key), Value(key));
        cache->setObject(nullptr, key);
        EXPECT_TRUE(cache->containsObjectForKey(key)) << "null changes nothing";
        cache->removeObjectForKey(key);
        EXPECT_FALSE(cache->containsObjectForKey(key));
    }
    cache->setObject(1, std::nullopt);
    EXPECT_TRUE(cache->objectForKey(std::nullopt).isNull());
    EXPECT_EQ(cache->totalCount(), 0u);
    EXPECT_EQ(cache->nameSpace(), "harbours");
}

/// A small trace of the workload that the benchmark has in full.
TEST_F(KXMemoryCacheTest, HitShareOfASkewedTrace) {
    constexpr std::size_t kKeys = 20'000;
    std::vector<double> sums(kKeys);
    double sum = 0;
    for (std::size_t i = 0; i < kKeys; ++i) sums[i] = sum += 1 / std::pow(static_cast<double>(i + 1), 0.99);
    std::mt19937 random(4);
    std::uniform_real_distribution<double> below(0, sum);
    cache->setCountLimit(kKeys / 10);
    int hits = 0;
    constexpr int kRequests = 400'000;
    for (int i = 0; i < 2 * kRequests; ++i) {
        const auto key = std::to_string(std::ranges::upper_bound(sums, below(random)) - sums.begin());
        const bool isHit = !cache->objectForKey(key).isNull();
        if (!isHit) cache->setObject(1, key);
        if (i >= kRequests) hits += isHit ? 1 : 0;
    }
    EXPECT_GE(hits / double{kRequests}, 0.74);
    EXPECT_EQ(cache->totalCount(), kKeys / 10);
}

}  // namespace
}  // namespace kx
