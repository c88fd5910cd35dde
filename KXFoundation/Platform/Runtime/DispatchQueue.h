// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

/// Runs blocks in the order of their coming, as many at a time as its width allows: a serial queue one, the
/// shared background queue as many as there are processors, four at least, the main queue those of the main
/// thread's turn (see EventLoop). A block that waits by the library's own means gives its thread to others
/// meanwhile; one that waits otherwise keeps it. Any thread.
///
/// An exception leaves sync() towards its caller; one that leaves an asynchronous block ends the process.
/// Blocks that have not begun when the process exits never run.
class KX_EXPORT DispatchQueue : public std::enable_shared_from_this<DispatchQueue> {
    struct Private {};

  public:
    using Block = std::function<void()>;
    enum class Thread : std::uint8_t { Main, Background };

    /// The main queue, labelled "main".
    [[nodiscard]] static DispatchQueue& main();
    /// The shared concurrent background queue, labelled "background".
    [[nodiscard]] static DispatchQueue& shared();
    /// A queue of one's own that runs one block at a time.
    [[nodiscard]] static std::shared_ptr<DispatchQueue> serial(std::string_view label);

    [[nodiscard]] const std::string& label() const noexcept { return label_; }

    /// The label of the queue whose block the calling thread is running; "main" on the main thread outside of
    /// any block, "" on any other thread.
    [[nodiscard]] static std::string_view currentQueueLabel() noexcept;
    /// Whether the calling thread runs a block of this queue, or one that such a block waits for.
    [[nodiscard]] bool isCurrent() const noexcept;

    /// Runs the block later; never before this returns.
    void async(Block block) { static_cast<void>(submit(std::move(block))); }

    /// Runs the block in its turn, waits for it and answers what it answers: on the calling thread, but for
    /// the main queue's blocks, which run on the main thread. To call it on the queue that the caller is on
    /// is a caller error; the block does not run, and the answer is R().
    template <class B, class R = std::invoke_result_t<B&>>
    R sync(B&& block) {
        if constexpr (std::is_void_v<R>) {
            runAndWait([&] { block(); });
        } else {
            std::optional<R> answer;
            runAndWait([&] { answer.emplace(block()); });
            return answer ? std::move(*answer) : R();
        }
    }

    /// Gives the block to the queue when the clock has moved on by `delay`; below zero counts as zero. Cannot
    /// be taken back. The queue is kept alive until then.
    void after(std::chrono::nanoseconds delay, Block block);

    /// One line for a person: label, width, how many blocks wait and run.
    [[nodiscard]] std::string describe() const;

    DispatchQueue(Private, std::string_view label, std::size_t width, Thread thread);
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

  private:
    friend class OperationQueue;
    static constexpr std::size_t kUnlimited = static_cast<std::size_t>(-1);
    struct Entry {
        std::uint64_t number;
        Block block;
        bool* turnOfWaiter;  // a synchronous caller's, in place of a block
    };
    static std::shared_ptr<DispatchQueue> withWidth(std::string_view label, std::size_t width, Thread thread);

    std::uint64_t submit(Block block);
    [[nodiscard]] bool cancel(std::uint64_t number);
    void waitUntilIdle();
    [[nodiscard]] std::size_t unfinished() const;

    void runAndWait(const Block& block);
    void runAndWaitOnMain(const Block& block);
    void waitForTurn();
    void runNext();
    void finishOne();
    void giveToExecutor();

    const std::string label_;
    const std::size_t width_;
    const Thread thread_;

    mutable Mutex mutex_;
    WaitPoint changed_;
    std::deque<Entry> pending_ KX_GUARDED_BY(mutex_);
    std::size_t slots_ KX_GUARDED_BY(mutex_) = 0;  // in use, at most width_: given to the executor or running
    std::size_t running_ KX_GUARDED_BY(mutex_) = 0;  // of these
    std::uint64_t lastNumber_ KX_GUARDED_BY(mutex_) = 0;
};

}  // namespace kx
