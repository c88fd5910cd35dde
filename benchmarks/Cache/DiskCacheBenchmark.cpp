// SPDX-License-Identifier: MIT

// A store on disk: 10,000 values of 4 KiB and 1,000 of 256 KiB under keys like digests. One round works
// through all keys in scattered order; the time is that of one operation. A set is acknowledged, not synced:
// it survives the end of the process, not a power cut. What is read was just written, so it lies in the
// system's memory. The counter of the sets is what the folder takes on disk per byte of payload.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <leveldb/db.h>
#include <leveldb/write_batch.h>
#include <lmdb.h>
#include <sys/stat.h>
#include <unistd.h>

#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>

#include "benchmarks/peers/Check.h"

namespace {

namespace fs = std::filesystem;

void require(bool good, const char* what) {
    if (good) return;
    std::perror(what);
    std::abort();
}

// A contender opens its store in a folder; every operation is complete by itself (no batches, no open
// transaction).

class Kx {
  public:
    explicit Kx(const std::string& folder) : cache_(kx::KXDiskCache::initWithPath(folder)) {}
    void set(const std::string& key, const kx::Value& value) { cache_->setObject(value, key); }
    kx::Value get(const std::string& key) { return cache_->objectForKey(key); }
    bool contains(const std::string& key) { return cache_->containsObjectForKey(key); }
    void removeAll(const std::vector<std::string>&) { cache_->removeAllObjects(); }
    /// The files are deleted on the store's queue; what is asked there answers after that.
    void waitForRoom() {
        std::atomic<bool> isDone{false};
        cache_->containsObjectForKey("", [&](auto&, bool) { isDone = true, isDone.notify_one(); });
        isDone.wait(false);
    }
    static kx::Value input(const std::string& bytes) {
        const auto view = std::as_bytes(std::span(bytes));
        return kx::Value::data(std::vector<std::byte>(view.begin(), view.end()));
    }

  private:
    const std::shared_ptr<kx::KXDiskCache> cache_;
};

struct TextInput {
    static std::string input(const std::string& bytes) { return bytes; }
};

/// A file per key, written aside and renamed.
class Files : public TextInput {
  public:
    explicit Files(std::string folder) : folder_(std::move(folder)) {}
    void set(const std::string& key, const std::string& value) {
        const std::string path = folder_ + "/" + key, aside = path + ".new";
        const int file = ::open(aside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        require(file >= 0 && ::write(file, value.data(), value.size()) == static_cast<ssize_t>(value.size()),
                "write");
        ::close(file);
        require(::rename(aside.c_str(), path.c_str()) == 0, "rename");
    }
    std::string get(const std::string& key) {
        const int file = ::open((folder_ + "/" + key).c_str(), O_RDONLY | O_CLOEXEC);
        struct stat info {};
        require(file >= 0 && ::fstat(file, &info) == 0, "open");
        std::string value(static_cast<std::size_t>(info.st_size), '\0');
        require(::read(file, value.data(), value.size()) == info.st_size, "read");
        ::close(file);
        return value;
    }

  private:
    const std::string folder_;
};

class LevelDb : public TextInput {
  public:
    explicit LevelDb(const std::string& folder) : folder_(folder) { open(); }
    void set(const std::string& key, const std::string& value) {
        require(db_->Put({}, key, value).ok(), "put");
    }
    std::string get(const std::string& key) {
        std::string value;
        require(db_->Get({}, key, &value).ok(), "get");
        return value;
    }
    void removeAll(const std::vector<std::string>& keys) {
        leveldb::WriteBatch batch;
        for (const std::string& key : keys) batch.Delete(key);
        require(db_->Write({}, &batch).ok(), "write");
    }
    /// Done with what it has put off.
    void settle() { db_->CompactRange(nullptr, nullptr); }

  protected:
    void open() {
        leveldb::Options options;
        options.create_if_missing = true;
        options.compression = leveldb::kNoCompression;
        leveldb::DB* opened = nullptr;
        require(leveldb::DB::Open(options, folder_, &opened).ok(), "leveldb");
        db_.reset(opened);
    }
    const std::string folder_;
    std::unique_ptr<leveldb::DB> db_;
};

/// Frees the room at once, by compaction.
class CompactedLevelDb : public LevelDb {
  public:
    using LevelDb::LevelDb;
    void removeAll(const std::vector<std::string>& keys) {
        LevelDb::removeAll(keys);
        settle();
    }
};

/// Frees the room at once, as a new store: nobody may have it open meanwhile.
class RemadeLevelDb : public LevelDb {
  public:
    using LevelDb::LevelDb;
    void removeAll(const std::vector<std::string>&) {
        db_.reset();
        require(leveldb::DestroyDB(folder_, {}).ok(), "destroy");
        open();
    }
};

/// What the system allows: a file that is appended to, and cut to nothing.
class Log : public TextInput {
  public:
    explicit Log(const std::string& folder)
        : file_(::open((folder + "/log").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {}
    ~Log() { ::close(file_); }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;
    void set(const std::string&, const std::string& value) {
        require(::pwrite(file_, value.data(), value.size(), end_) == static_cast<ssize_t>(value.size()),
                "log");
        end_ += static_cast<off_t>(value.size());
    }
    void removeAll(const std::vector<std::string>&) { require(::ftruncate(file_, end_ = 0) == 0, "cut"); }

  private:
    const int file_;
    off_t end_ = 0;
};

/// Without its syncs, as nobody else syncs.
class Lmdb : public TextInput {
  public:
    explicit Lmdb(const std::string& folder) {
        mdb_env_create(&environment_);
        mdb_env_set_mapsize(environment_, std::size_t{1} << 31);
        require(mdb_env_open(environment_, folder.c_str(), MDB_NOSYNC, 0644) == 0, "lmdb");
        transact(0, [&](MDB_txn* transaction) { mdb_dbi_open(transaction, nullptr, 0, &table_); });
    }
    ~Lmdb() { mdb_env_close(environment_); }
    Lmdb(const Lmdb&) = delete;
    Lmdb& operator=(const Lmdb&) = delete;
    void set(const std::string& key, const std::string& value) {
        transact(0, [&](MDB_txn* transaction) {
            MDB_val k = valueOf(key), v = valueOf(value);
            require(mdb_put(transaction, table_, &k, &v, 0) == 0, "put");
        });
    }
    std::string get(const std::string& key) {
        std::string value;
        transact(MDB_RDONLY, [&](MDB_txn* transaction) {
            MDB_val k = valueOf(key), v;
            require(mdb_get(transaction, table_, &k, &v) == 0, "get");
            value.assign(static_cast<const char*>(v.mv_data), v.mv_size);
        });
        return value;
    }
    bool contains(const std::string& key) {
        bool isThere = false;
        transact(MDB_RDONLY, [&](MDB_txn* transaction) {
            MDB_val k = valueOf(key), v;
            isThere = mdb_get(transaction, table_, &k, &v) == 0;
        });
        return isThere;
    }

  private:
    static MDB_val valueOf(const std::string& text) { return {text.size(), const_cast<char*>(text.data())}; }
    template <class Body>
    void transact(unsigned flags, Body body) {
        MDB_txn* transaction = nullptr;
        require(mdb_txn_begin(environment_, nullptr, flags, &transaction) == 0, "begin");
        body(transaction);
        if (flags != 0) return mdb_txn_abort(transaction);
        require(mdb_txn_commit(transaction) == 0, "commit");
    }
    MDB_env* environment_ = nullptr;
    MDB_dbi table_ = 0;
};

struct Load {
    const char* name;
    std::size_t count, size;
};
constexpr Load k4KiB{"4k", 10'000, 4096};
constexpr Load k256KiB{"256k", 1000, 256 << 10};

std::vector<std::string> keysOf(const Load& load) {
    std::mt19937_64 random(5);
    std::vector<std::string> keys(load.count);
    for (std::string& key : keys) {
        char text[33];
        std::snprintf(text, sizeof text, "%016llx%016llx", static_cast<unsigned long long>(random()),
                      static_cast<unsigned long long>(random()));
        key = text;
    }
    return keys;
}

/// What the folder really takes, so that files with holes are not overstated.
double bytesOnDisk(const std::string& folder) {
    std::uintmax_t bytes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        struct stat info {};
        if (::stat(entry.path().c_str(), &info) == 0)
            bytes += static_cast<std::uintmax_t>(info.st_blocks) * 512;
    }
    return static_cast<double>(bytes);
}

bool isEqual(const std::string& text, const std::string& bytes) {
    return text == bytes;
}
bool isEqual(const kx::Value& value, const std::string& bytes) {
    const auto data = value.asData();
    return data && std::ranges::equal(*data, std::as_bytes(std::span(bytes)));
}

/// A contender with its folder, full of a load.
template <class Contender>
class Filled {
  public:
    Filled(const std::string& who, const Load& load)
        : keys(keysOf(load)), scattered(keys), bytes(load.size, '\0') {
        std::mt19937 random(3);
        for (char& c : bytes) c = static_cast<char>(random());
        std::shuffle(scattered.begin(), scattered.end(), random);
        input = Contender::input(bytes);
        folder = fs::read_symlink("/proc/self/exe").parent_path() / ("disk-cache-" + who);
        fs::remove_all(folder);
        fs::create_directories(folder);
        store.emplace(folder);
    }
    ~Filled() {
        if constexpr (requires { store->waitForRoom(); })
            store->waitForRoom();  // nobody else removes files then
        store.reset();
        fs::remove_all(folder);
    }
    Filled(const Filled&) = delete;
    Filled& operator=(const Filled&) = delete;
    void fill() {
        for (const std::string& key : keys) store->set(key, input);
    }
    void check() {
        if constexpr (requires { store->get(keys[0]); })
            peers::checkEqualAnswers(isEqual(store->get(keys.back()), bytes), "disk-cache");
        if constexpr (requires { store->contains(keys[0]); })
            peers::checkEqualAnswers(store->contains(keys[0]) && !store->contains("no key"), "disk-cache");
    }

    const std::vector<std::string> keys;
    std::vector<std::string> scattered;
    std::string bytes;
    decltype(Contender::input(std::string())) input;
    std::string folder;
    std::optional<Contender> store;
};

template <class Body>
void timed(benchmark::State& state, std::size_t operations, Body body) {
    const auto start = std::chrono::steady_clock::now();
    body();
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(spent.count() / static_cast<double>(operations));
}

template <class Contender>
void set(benchmark::State& state, const std::string& who, const Load& load) {
    Filled<Contender> on(who, load);
    for (auto _ : state) timed(state, load.count, [&] { on.fill(); });
    on.check();
    state.counters["bytes_per_payload_byte"] =
        bytesOnDisk(on.folder) / static_cast<double>(load.count * load.size);
}

template <class Contender>
void get(benchmark::State& state, const std::string& who, const Load& load) {
    Filled<Contender> on(who, load);
    on.fill();
    const auto readAll = [&] {
        for (const std::string& key : on.scattered) benchmark::DoNotOptimize(on.store->get(key));
    };
    readAll();
    for (auto _ : state) timed(state, load.count, readAll);
    on.check();
}

template <class Contender>
void contains(benchmark::State& state, const std::string& who, const Load& load) {
    Filled<Contender> on(who, load);
    on.fill();
    on.check();
    for (auto _ : state) {
        timed(state, load.count, [&] {
            for (const std::string& key : on.scattered) benchmark::DoNotOptimize(on.store->contains(key));
        });
    }
}

template <class Contender>
void fillToRemove(Filled<Contender>& on) {
    on.fill();
    on.check();
    if constexpr (requires { on.store->settle(); }) on.store->settle();
}

/// Until the disk has the room again where a store gives it back, which LevelDB leaves to some later
/// compaction.
template <class Contender>
void removeAll(benchmark::State& state, const std::string& who, const Load& load) {
    Filled<Contender> on(who, load);
    fillToRemove(on);
    for (auto _ : state) {
        timed(state, load.count, [&] {
            on.store->removeAll(on.keys);
            if constexpr (requires { on.store->waitForRoom(); }) on.store->waitForRoom();
        });
    }
}

/// Until the caller has its answer.
template <class Contender>
void removeAllAnswered(benchmark::State& state, const std::string& who, const Load& load) {
    Filled<Contender> on(who, load);
    fillToRemove(on);
    for (auto _ : state) timed(state, load.count, [&] { on.store->removeAll(on.keys); });
}

void add(const std::string& workload, const std::string& who, const Load& load,
         void (*body)(benchmark::State&, const std::string&, const Load&)) {
    benchmark::RegisterBenchmark(("disk-cache/" + workload + "/" + who).c_str(),
                                 [=](benchmark::State& state) { body(state, who, load); })
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

const bool registered = [] {
    add("set-4k", "kx", k4KiB, set<Kx>);
    add("set-4k", "leveldb", k4KiB, set<LevelDb>);
    add("set-256k", "kx", k256KiB, set<Kx>);
    add("set-256k", "file", k256KiB, set<Files>);
    add("get-4k", "kx", k4KiB, get<Kx>);
    add("get-4k", "lmdb", k4KiB, get<Lmdb>);
    add("get-256k", "kx", k256KiB, get<Kx>);
    add("get-256k", "lmdb", k256KiB, get<Lmdb>);
    add("contains", "kx", k4KiB, contains<Kx>);
    add("contains", "lmdb", k4KiB, contains<Lmdb>);
    add("remove-all", "kx", k4KiB, removeAll<Kx>);
    add("remove-all", "leveldb", k4KiB, removeAll<LevelDb>);
    add("remove-all", "leveldb-compacted", k4KiB, removeAll<CompactedLevelDb>);
    add("remove-all", "leveldb-remade", k4KiB, removeAll<RemadeLevelDb>);
    add("remove-all", "log", k4KiB, removeAll<Log>);
    add("remove-all-answered", "kx", k4KiB, removeAllAnswered<Kx>);
    add("remove-all-answered", "leveldb", k4KiB, removeAllAnswered<LevelDb>);
    return true;
}();

}  // namespace
