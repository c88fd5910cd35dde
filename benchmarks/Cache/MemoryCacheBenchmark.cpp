// SPDX-License-Identifier: MIT

// A store in memory with a limit on count and cost: keys of about 45 bytes, values that are shared.
// hit: 100,000 resident keys, asked for by zipf's frequencies. set-evict: new keys into a full store of
// 10,000. mix: get, and set on a miss, by zipf over 100,000 keys with room for a tenth of them; its time is
// nobody's bound, the counter is the share of hits.
#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/sequenced_index.hpp>
#include <boost/multi_index_container.hpp>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <rocksdb/cache.h>

#include <KXFoundation/Cache/KXMemoryCache.h>

#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/Inputs.h"

namespace {

constexpr std::size_t kCost = 4096;
constexpr std::size_t kKeys = 100'000;
constexpr std::size_t kNewKeys = 1 << 17;
constexpr std::size_t kRoom = 10'000;

std::vector<std::string> namesFrom(std::size_t first, std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = first; i < first + count; ++i)
        names.push_back("https://img.example.org/gallery/" + std::to_string(100'000'000 + i * 7919) + ".jpg");
    return names;
}

const std::vector<std::string> keys = namesFrom(0, kKeys);
const std::vector<std::string> newKeys = namesFrom(kKeys, kNewKeys);
const std::vector<std::uint32_t> popular = peers::zipf(kKeys, 1 << 20);

/// One value per key: threads that share one would fight for its count.
template <class Object, class Make>
std::vector<Object> objectsBy(Make make) {
    std::vector<Object> objects;
    for (std::size_t i = 0; i < kKeys; ++i) objects.push_back(make());
    return objects;
}

// A contender is made with a limit on the count; its limit on the cost is that many times kCost.

class Kx {
  public:
    using Object = kx::Value;
    static Object object() { return kx::Value(std::string("decoded picture")); }
    explicit Kx(std::size_t limit) {
        cache_->setCountLimit(limit);
        cache_->setCostLimit(limit * kCost);
    }
    Object get(const std::string& key) { return cache_->objectForKey(key); }
    void set(const std::string& key, Object object) {
        cache_->setObjectWithCost(std::move(object), key, kCost);
    }
    static bool isThere(const Object& object) { return !object.isNull(); }

  private:
    const std::shared_ptr<kx::KXMemoryCache> cache_ = kx::KXMemoryCache::initWithNameSpace("benchmark");
};

using Shared = std::shared_ptr<const std::string>;
Shared sharedText() {
    return std::make_shared<std::string>("decoded picture");
}

/// Boost.MultiIndex: a hash and the order of last use, under a mutex.
class MultiIndex {
  public:
    using Object = Shared;
    static Object object() { return sharedText(); }
    explicit MultiIndex(std::size_t limit) : limit_(limit), costLimit_(limit * kCost) {}
    Object get(const std::string& key) {
        const std::lock_guard lock(mutex_);
        auto& index = table_.get<1>();
        const auto found = index.find(key);
        if (found == index.end()) return nullptr;
        table_.relocate(table_.begin(), table_.project<0>(found));
        return found->object;
    }
    void set(const std::string& key, Object object) {
        const std::lock_guard lock(mutex_);
        const auto [at, isNew] = table_.push_front({key, std::move(object), kCost});
        if (!isNew) return table_.relocate(table_.begin(), at);
        cost_ += kCost;
        while (table_.size() > limit_ || cost_ > costLimit_) {
            cost_ -= table_.back().cost;
            table_.pop_back();
        }
    }
    static bool isThere(const Object& object) { return object != nullptr; }

  private:
    struct Entry {
        std::string key;
        Object object;
        std::size_t cost;
    };
    using Table = boost::multi_index_container<
        Entry,
        boost::multi_index::indexed_by<
            boost::multi_index::sequenced<>,
            boost::multi_index::hashed_unique<boost::multi_index::member<Entry, std::string, &Entry::key>>>>;
    const std::size_t limit_, costLimit_;
    std::size_t cost_ = 0;
    std::mutex mutex_;
    Table table_;
};

/// RocksDB's cache: 64 shards, each in the order of last use under its own mutex.
class RocksDb {
  public:
    using Object = Shared;
    static Object object() { return sharedText(); }
    explicit RocksDb(std::size_t limit)
        : table_(rocksdb::NewLRUCache(limit * kCost, 6, false, 0.5, nullptr, rocksdb::kDefaultToAdaptiveMutex,
                                      rocksdb::kDontChargeCacheMetadata)) {}
    Object get(const std::string& key) {
        auto* const handle = table_->Lookup(key);
        if (!handle) return nullptr;
        Object object = *static_cast<Object*>(table_->Value(handle));
        table_->Release(handle);
        return object;
    }
    void set(const std::string& key, Object object) {
        const auto destroy = [](const rocksdb::Slice&, void* value) { delete static_cast<Object*>(value); };
        static_cast<void>(table_->Insert(key, new Object(std::move(object)), kCost, destroy));
    }
    static bool isThere(const Object& object) { return object != nullptr; }

  private:
    const std::shared_ptr<rocksdb::Cache> table_;
};

/// What the workloads of one contender share; made by the first thread that comes.
template <class Contender>
struct Stage {
    std::vector<typename Contender::Object> objects =
        objectsBy<typename Contender::Object>(Contender::object);
    Contender full{kKeys + kKeys / 4};  // its shards fill unevenly
    Contender small{kRoom};
    Stage() {
        for (std::size_t i = 0; i < kKeys; ++i) full.set(keys[i], objects[i]);
        bool allThere = true;
        for (const std::string& key : keys) allThere = allThere && Contender::isThere(full.get(key));
        peers::checkEqualAnswers(allThere && !Contender::isThere(full.get("no key")), "memory-cache");
    }
    static Stage& shared() {
        static Stage stage;
        return stage;
    }
};

std::size_t startOf(const benchmark::State& state, std::size_t apart) {
    return static_cast<std::size_t>(state.thread_index()) * apart;
}

template <class Contender>
void hit(benchmark::State& state) {
    auto& stage = Stage<Contender>::shared();
    peers::Cycle next(popular, startOf(state, 77'777));
    std::size_t missed = 0;
    for (auto _ : state) missed += Contender::isThere(stage.full.get(keys[next()])) ? 0U : 1U;
    if (missed != 0) state.SkipWithError("a key was not resident");
}

template <class Contender>
void setAndEvict(benchmark::State& state) {
    auto& stage = Stage<Contender>::shared();
    peers::Cycle next(newKeys, startOf(state, 55'555));
    std::size_t i = startOf(state, 33'333);
    for (auto _ : state) stage.small.set(next(), stage.objects[i++ & 0xFFFF]);
}

template <class Contender>
void mix(benchmark::State& state) {
    auto& stage = Stage<Contender>::shared();
    Contender cache(kKeys / 10);
    std::int64_t hits = 0, asked = 0;
    const auto ask = [&](std::uint32_t key) {
        const bool isHit = Contender::isThere(cache.get(keys[key]));
        if (!isHit) cache.set(keys[key], stage.objects[key]);
        return isHit;
    };
    for (std::size_t i = 0; i < popular.size() / 2; ++i) ask(popular[i]);
    peers::Cycle next(popular, popular.size() / 2);
    for (auto _ : state) {
        hits += ask(next()) ? 1 : 0;
        ++asked;
    }
    state.counters["hit_share"] = static_cast<double>(hits) / static_cast<double>(asked);
}

template <class Contender>
void contend(const std::string& who) {
    const auto add = [&](const std::string& workload, void (*body)(benchmark::State&)) {
        return benchmark::RegisterBenchmark(("memory-cache/" + workload + "/" + who).c_str(), body);
    };
    add("hit", hit<Contender>);
    add("hit-two-threads", hit<Contender>)->Threads(2)->UseRealTime();
    add("set-evict", setAndEvict<Contender>);
    add("set-evict-two-threads", setAndEvict<Contender>)->Threads(2)->UseRealTime();
    add("mix", mix<Contender>)->Iterations(1 << 19);
}

const bool registered = [] {
    contend<Kx>("kx");
    contend<MultiIndex>("multi-index");
    contend<RocksDb>("rocksdb");
    return true;
}();

}  // namespace
