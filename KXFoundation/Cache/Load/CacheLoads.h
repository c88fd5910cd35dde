// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Cache/CacheKey.h>
#include <KXFoundation/Cache/KXCacheLoad.h>
#include <KXFoundation/Cache/KXDiskCacheProtocol.h>
#include <KXFoundation/Cache/KXMemoryCacheProtocol.h>
#include <KXFoundation/Cache/Load/DatedValue.h>
#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

/// The loads of one cache. A key that memory cannot answer gets a flight, which all who ask meanwhile join:
/// on the shared background queue it looks to the disk, answers whom that serves, asks the loader for the
/// others, stores and answers what came. A caller that was answered a stale value stays aboard, so that
/// nobody's cancelling ends the renewal. Private to Cache. Any thread.
///
/// Stores, loaders, callbacks and whatever these own are called and destroyed without the mutex. A flight
/// holds this, and this the stores: the cache may go at any time.
///
/// A flight whose key is set or removed through the cache, from before it began or later, is outdated: it
/// answers its callers, and stores nothing. If that comes in the very moment of storing, the key is removed
/// afterwards: a cache may lose a value, but not bring a removed one back.
class CacheLoads : public std::enable_shared_from_this<CacheLoads> {
  public:
    struct Caller;
    struct Flight;
    class Change;

    CacheLoads(std::shared_ptr<KXMemoryCacheProtocol> memory, std::shared_ptr<KXDiskCacheProtocol> disk);

    [[nodiscard]] static std::shared_ptr<Caller> caller(KXCacheKey key, KXCacheLoader loader,
                                                        KXCacheLoadOptions options, KXCacheLoaded completion);
    /// Once for each caller.
    void begin(const std::shared_ptr<Caller>& caller);
    /// Nothing for one that has been answered.
    void cancel(const std::shared_ptr<Caller>& caller);
    /// The end of the loader's work: the first one counts.
    void complete(const std::shared_ptr<Flight>& flight, Result<Value> answer);

    [[nodiscard]] KXCacheLoadStatistics statistics() const;

  private:
    using Flights = std::map<std::string, std::shared_ptr<Flight>, std::less<>>;
    using ChangeCount = std::atomic<std::uint32_t>;

    void outdate(KXCacheKey key);
    void outdate(Flights::iterator place) KX_REQUIRES(mutex_);
    void outdateAll();
    [[nodiscard]] ChangeCount& changesOf(std::string_view key) noexcept;

    using Callers = std::vector<std::shared_ptr<Caller>>;
    using Answers = std::vector<std::pair<std::shared_ptr<Caller>, Result<Value>>>;

    void listen(const std::shared_ptr<Caller>& caller);
    std::shared_ptr<Flight> board(const std::shared_ptr<Caller>& caller, Answers& answers)
        KX_REQUIRES(mutex_);
    bool serve(const std::shared_ptr<Caller>& caller, const DatedValue& found,
               std::uint64_t KXCacheLoadStatistics::*hits, Answers& answers) KX_REQUIRES(mutex_);
    static void answer(const std::shared_ptr<Caller>& caller, Result<Value> with, Answers& answers);
    static void send(Answers&& answers);
    std::shared_ptr<Flight> leave(const std::shared_ptr<Caller>& caller) KX_REQUIRES(mutex_);
    void end(const std::shared_ptr<Flight>& flight) KX_REQUIRES(mutex_);

    // The stations of a flight, on the shared queue.
    void look(const std::shared_ptr<Flight>& flight);
    std::optional<KXCacheLoader> serveFound(const std::shared_ptr<Flight>& flight, const Callers& aboard,
                                            Answers& answers) KX_REQUIRES(mutex_);
    void run(const std::shared_ptr<Flight>& flight, const KXCacheLoader& loader);
    void settle(const std::shared_ptr<Flight>& flight, const Result<Value>& outcome);
    Result<Value> answerFor(const Caller& caller, const Flight& flight, const Result<Value>& outcome)
        KX_REQUIRES(mutex_);

    [[nodiscard]] double now() const;
    [[nodiscard]] DatedValue inMemory(std::string_view key) const;
    [[nodiscard]] DatedValue onDisk(std::string_view key) const;
    [[nodiscard]] bool isOutdated(const Flight& flight) const;
    void keepInMemory(const Flight& flight, const DatedValue& found);
    void store(const Flight& flight, const Value& value);
    void removeFromStores(std::string_view key);

    const std::shared_ptr<KXMemoryCacheProtocol> memory_;  // absent stores hold nothing
    const std::shared_ptr<KXDiskCacheProtocol> disk_;
    const std::shared_ptr<Clock> clock_;

    mutable Mutex mutex_;
    Flights flights_ KX_GUARDED_BY(mutex_);
    // So that a cache without loads sets without a lock: a change is counted before it looks for flights, and
    // a flight before it looks for changes.
    std::atomic<std::size_t> flightCount_{0};
    std::array<ChangeCount, 64> changes_{};  // under way, by the key's hash
    ChangeCount changesOfAll_{0};
    KXCacheLoadStatistics statistics_ KX_GUARDED_BY(mutex_);
};

/// A change of a key, or of all keys, through the cache, from its making to its end.
class CacheLoads::Change {
  public:
    Change(std::shared_ptr<CacheLoads> loads, KXCacheKey key);
    explicit Change(std::shared_ptr<CacheLoads> ofAll);
    ~Change() { end(); }
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;

    void end() noexcept;

  private:
    const std::shared_ptr<CacheLoads> loads_;
    ChangeCount* count_;  // one of the loads'; null under an absent key, and at the end
};

/// Who waits. Its fields belong to whoever has answered it; before, to the mutex.
struct CacheLoads::Caller {
    /// Cancels the caller when its token is asked to stop.
    struct Canceller {
        std::weak_ptr<CacheLoads> loads;
        std::weak_ptr<Caller> caller;
        void operator()() const;
    };

    std::optional<std::string> key;
    KXCacheLoader loader;
    KXCacheLoadOptions options;
    KXCacheLoaded completion;
    bool isAnswered = false;
    std::weak_ptr<Flight> flight;
    std::optional<std::stop_callback<Canceller>> listening;  // the beginner's, then the destructor's
};

/// All but the first two belongs to the mutex.
struct CacheLoads::Flight {
    enum class Station : std::uint8_t { Looking, Loading, Storing, Over };

    explicit Flight(std::string_view name) : key(name) {}
    const std::string key;
    std::stop_source cancellation;
    Station station = Station::Looking;
    bool isOutdated = false;
    DatedValue found;
    std::uint64_t KXCacheLoadStatistics::*foundBy = nullptr;
    std::vector<std::shared_ptr<Caller>> callers;
};

/// Fails the load when nobody holds it any more.
class KXCacheLoading::Ending {
  public:
    Ending(std::shared_ptr<CacheLoads> loads, std::shared_ptr<CacheLoads::Flight> flight)
        : loads_(std::move(loads)), flight_(std::move(flight)) {}
    ~Ending();
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;

    [[nodiscard]] const CacheLoads::Flight& flight() const noexcept { return *flight_; }
    void complete(Result<Value> answer) { loads_->complete(flight_, std::move(answer)); }

  private:
    const std::shared_ptr<CacheLoads> loads_;
    const std::shared_ptr<CacheLoads::Flight> flight_;
};

}  // namespace kx
