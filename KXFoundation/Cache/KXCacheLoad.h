// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <concepts>
#include <coroutine>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <type_traits>
#include <utility>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

/// What KXCache::load takes and gives. A value that the cache holds is, for the caller who asks, one of
/// - fresh: it is the answer;
/// - stale: it is the answer, and is renewed meanwhile for those who come later;
/// - expired: it is no answer, the loader is asked.
/// Ages count from when a value was set, through restarts of the application too if the disk store tells them
/// (KXDiskCacheProtocol::ageOfObjectForKey). A value of unknown age, or one that was set in what is the
/// future by the present clock, counts as older than any limit.
namespace kx {

class CacheLoads;

/// The answer to a caller: the value, null if the loader found that there is none, or the loader's error; one
/// with ECANCELED for a caller that cancelled.
using KXCacheLoaded = std::function<void(const Result<Value>& answer)>;

struct KXCacheLoadOptions {
    static constexpr double kForever = std::numeric_limits<double>::infinity();
    enum class Failure : bool { AnswerError, AnswerStale };

    /// Seconds; below zero or not a number counts as 0, with which every load asks the loader.
    double freshFor = kForever;
    /// Seconds after that, counted likewise.
    double staleFor = 0;
    /// What is answered when the loader fails: its error, or the value that was found before, however old;
    /// the error if there was none.
    Failure failure = Failure::AnswerError;
    /// Asked to stop, the caller gets ECANCELED at once. The load goes on for the others who wait for it.
    std::stop_token cancellation = {};
    /// Where the answer comes; absent is the main queue.
    std::shared_ptr<DispatchQueue> queue = {};
};

/// A load as its loader sees it. Copies stand for the same load. Any thread.
class KX_EXPORT KXCacheLoading {
  public:
    [[nodiscard]] const std::string& key() const noexcept;
    /// Asked to stop once nobody waits for the load any more; what it answers then is dropped.
    [[nodiscard]] std::stop_token cancellation() const noexcept;
    /// Ends the load; calls after the first do nothing. A null value says that there is none: nothing is
    /// stored, and what was stored is removed. A load that is let go of by all without this has failed.
    void complete(Result<Value> answer) const;

  private:
    friend class CacheLoads;
    class Ending;
    explicit KXCacheLoading(std::shared_ptr<Ending> ending) : ending_(std::move(ending)) {}
    std::shared_ptr<Ending> ending_;
};

class KXCacheLoader;
template <class F>
concept KXCacheLoaderCall = !std::same_as<F, KXCacheLoader> && std::copy_constructible<F> &&
                            (std::invocable<F&, const KXCacheLoading&> || std::invocable<F&>);

/// Makes the value of a key. Anything callable, with the KXCacheLoading or without: it answers the value (or
/// an Error, or a Result<Value>), or it answers nothing and completes the loading, then or later.
///
///     [] { return readBerths(); }
///     []() -> Result<Value> {
///         if (const auto berths = readBerths()) return Value(*berths);
///         return Error{ErrorKind::Failed, 0, "reading berths"};
///     }
///     [](const KXCacheLoading& loading) {
///         service.ask(loading.key(), [loading](const std::string& text) { loading.complete(Value(text)); });
///     }
///
/// It runs on the shared background queue. What it throws is the load's error (ErrorKind::Failed).
class KX_EXPORT KXCacheLoader {
  public:
    KXCacheLoader() = default;
    KXCacheLoader(std::nullptr_t) {}
    template <KXCacheLoaderCall F>
    KXCacheLoader(F loader) {
        run_ = [loader = std::move(loader)](const KXCacheLoading& loading) mutable {
            if constexpr (std::invocable<F&, const KXCacheLoading&>) {
                runWith([&]() -> decltype(auto) { return loader(loading); }, loading);
            } else {
                static_assert(!std::is_void_v<std::invoke_result_t<F&>>, "a loader that gives no value");
                runWith(loader, loading);
            }
        };
    }

    explicit operator bool() const noexcept { return static_cast<bool>(run_); }
    void operator()(const KXCacheLoading& loading) const { run_(loading); }

  private:
    template <class Call>
    static void runWith(Call&& call, const KXCacheLoading& loading) {
        using Answer = std::invoke_result_t<Call&>;
        if constexpr (std::is_void_v<Answer>) {
            call();
        } else if constexpr (std::convertible_to<Answer, Result<Value>>) {
            loading.complete(call());
        } else {
            loading.complete(Value(call()));
        }
    }

    std::function<void(const KXCacheLoading&)> run_;
};

/// What the loads of one cache came to.
struct KXCacheLoadStatistics {
    std::uint64_t memoryHits = 0;    ///< fresh answers from memory
    std::uint64_t diskHits = 0;      ///< and from disk
    std::uint64_t staleAnswers = 0;  ///< stale ones, those in place of an error included
    std::uint64_t loads = 0;         ///< how often a loader was asked
    std::uint64_t joined = 0;        ///< callers that found their key being loaded already
    std::uint64_t failures = 0;      ///< loads that ended with an error
    std::uint64_t cancelled = 0;     ///< callers that cancelled
};

/// A load that a coroutine awaits, made by KXCache::load. It begins with the await; the coroutine goes on in
/// a later block of the queue of its options. A coroutine that is destroyed while it waits has cancelled;
/// that happens on that queue. The cache may be gone before.
class KX_EXPORT KXCacheLoadAnswer {
  public:
    ~KXCacheLoadAnswer();
    KXCacheLoadAnswer(const KXCacheLoadAnswer&) = delete;
    KXCacheLoadAnswer& operator=(const KXCacheLoadAnswer&) = delete;

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> coroutine);
    Result<Value> await_resume();

  private:
    friend class KXCache;
    struct Waiting;
    KXCacheLoadAnswer(std::shared_ptr<CacheLoads> loads, std::shared_ptr<Waiting> waiting)
        : loads_(std::move(loads)), waiting_(std::move(waiting)) {}

    const std::shared_ptr<CacheLoads> loads_;
    const std::shared_ptr<Waiting> waiting_;
};

}  // namespace kx
