// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Prefetch.h>
#include <KXFoundation/Platform/Runtime/Sanitizers.h>

/// Reclamation for structures that are read without a lock and without a shared count.
///
/// A reader holds an EpochReading while it looks at the structure; that is one plain store into a cache line
/// of its own thread. A writer first unlinks an object, so that no later reader can find it, then gives it to
/// retire(): it is destroyed once every reader that was inside at that moment has left. The price is on the
/// writer's side: where several threads read, retire() makes one system call (membarrier), after which each
/// of them has seen the unlinking or is seen to be inside. A count or a hazard pointer per object would cost
/// each reader a shared write or a fence instead.
namespace kx {

/// An object that can be retired. Its destructor runs on the thread whose leaving (or retiring) made it safe,
/// under no lock.
class KX_EXPORT Retirable {
  public:
    virtual ~Retirable() = default;

  private:
    friend class EpochDomain;
    Retirable* nextRetired_ = nullptr;
    std::uint64_t retiredIn_ = 0;
};

/// Destroys an unlinked object as soon as no reader can hold it: before this returns if no thread is reading,
/// else when the last such reader leaves. Any thread, also inside a reading of its own. Hold no lock:
/// destructors run.
KX_EXPORT void retire(Retirable* unlinked);
/// The same without the system call, for what only a FencedEpochReading can find.
KX_EXPORT void retireFenced(Retirable* unlinked);
/// Whether no thread is reading, so that what only a FencedEpochReading can find, and was unlinked before the
/// call, may be destroyed at once: cheaper than retiring, as threads that retire share nothing. May say no
/// although nobody is.
[[nodiscard]] KX_EXPORT bool isNobodyReading() noexcept;

/// One thread's mark, alone in its cache line.
struct alignas(kApart) EpochReader {
    std::atomic<std::uint64_t> epoch{0};  // 0: outside
    std::uint32_t depth = 0;
    std::uint32_t number = 0;
    bool inUse = false;  // guarded by the domain's lock
    EpochReader* next = nullptr;
};

/// What readers share and seldom changes.
struct alignas(kApart) EpochState {
    std::atomic<std::uint64_t> now{1};
    std::atomic<std::uint32_t> waiting{0};     // retired and not destroyed yet
    std::atomic<bool> readersNeedFence{true};  // where the system has no membarrier
};

/// Marks the calling thread as reading for one scope. Scopes nest; the outermost decides. A scope that never
/// ends keeps everything alive that is retired meanwhile.
class EpochReading {
  public:
    EpochReading() : reader_(thisThread()) {
        if (reader_.depth++ == 0) mark(state_.now.load(std::memory_order_acquire));
    }
    ~EpochReading() {
        if (--reader_.depth != 0) return;
        mark(0);
        if (state_.waiting.load(std::memory_order_seq_cst) != 0) destroyRetired();
    }
    EpochReading(const EpochReading&) = delete;
    EpochReading& operator=(const EpochReading&) = delete;

    /// A small number that no other living thread has.
    [[nodiscard]] static std::uint32_t threadNumber() { return thisThread().number; }
    /// Whether the calling thread is inside a scope.
    [[nodiscard]] static bool isInside() noexcept { return current_ && current_->depth != 0; }

  protected:
    /// Makes sure that every other thread sees the mark before this one reads on.
    void fence() noexcept {
        if constexpr (kThreadSanitizer) {  // it knows no fences
            reader_.epoch.exchange(reader_.epoch.load(std::memory_order_relaxed), std::memory_order_seq_cst);
        } else {
            std::atomic_thread_fence(std::memory_order_seq_cst);
        }
    }

  private:
    friend class EpochDomain;
    [[nodiscard]] static EpochReader& thisThread() { return current_ ? *current_ : registerThread(); }
    static void threadEnds(void* reader) noexcept;
    KX_EXPORT static EpochReader& registerThread();
    KX_EXPORT static void destroyRetired();
    KX_EXPORT static EpochState state_;
    // The initial-exec model spares a call per access inside a shared library.
    KX_EXPORT static constinit thread_local EpochReader* current_ __attribute__((tls_model("initial-exec")));

    void mark(std::uint64_t epoch) noexcept {
        if (state_.readersNeedFence.load(std::memory_order_relaxed)) {
            reader_.epoch.exchange(epoch, std::memory_order_seq_cst);
        } else {
            reader_.epoch.store(epoch, std::memory_order_release);
            std::atomic_signal_fence(
                std::memory_order_seq_cst);  // the compiler keeps the order, membarrier the rest
        }
    }

    EpochReader& reader_;
};

/// A reading that pays for the order itself, some nanoseconds, where a structure changes as often as it is
/// read: its writers call retireFenced().
class FencedEpochReading : public EpochReading {
  public:
    FencedEpochReading() { fence(); }
};

}  // namespace kx
