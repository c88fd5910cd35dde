// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
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
///
/// A FencedEpochReading pays for the order itself, some nanoseconds, where a structure changes as often as it
/// is read; its writers call retireFenced(). The two kinds know nothing of each other: a structure is read by
/// one of them.
namespace kx {

enum class EpochKind : std::uint8_t { Plain, Fenced };
constexpr std::size_t kEpochKinds = 2;

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

/// Destroys an unlinked object as soon as no EpochReading can hold it: before this returns if no thread is
/// reading, else when the last such reader leaves. Any thread, also inside a reading of its own. Hold no
/// lock: destructors run.
KX_EXPORT void retire(Retirable* unlinked);
/// The same for a FencedEpochReading, and without the system call where nobody is reading.
KX_EXPORT void retireFenced(Retirable* unlinked);
/// Whether no thread is inside a FencedEpochReading, so that what was unlinked before the call may be
/// destroyed at once: cheaper than retiring, as threads that retire share nothing. May say no although nobody
/// is.
[[nodiscard]] KX_EXPORT bool isNobodyReadingFenced() noexcept;

/// One thread's marks, alone in their cache line.
struct alignas(kApart) EpochReader {
    struct Mark {
        std::atomic<std::uint64_t> epoch{0};  // 0: outside
        std::uint32_t depth = 0;
    };
    Mark marks[kEpochKinds];
    std::uint32_t number = 0;
    bool inUse = false;  // guarded by the domain's lock
    EpochReader* next = nullptr;
};

/// What readers share and seldom changes.
struct alignas(kApart) EpochState {
    std::atomic<std::uint64_t> now{1};
    std::atomic<std::uint32_t> waiting[kEpochKinds]{};  // retired and not destroyed yet
    std::atomic<bool> readersNeedFence{true};           // where the system has no membarrier
};

/// The readers as threads and as a whole; private to the two readings.
class EpochReaders {
  public:
    /// A small number that no other living thread has.
    [[nodiscard]] static std::uint32_t threadNumber() { return thisThread().number; }

  protected:
    [[nodiscard]] static EpochReader& thisThread() { return current_ ? *current_ : registerThread(); }
    static void threadEnds(void* reader) noexcept;
    KX_EXPORT static EpochReader& registerThread();
    KX_EXPORT static void destroyRetired(EpochKind kind);
    KX_EXPORT static EpochState state_;
    // The initial-exec model spares a call per access inside a shared library.
    KX_EXPORT static constinit thread_local EpochReader* current_ __attribute__((tls_model("initial-exec")));

    friend class EpochDomain;
};

/// Marks the calling thread as reading for one scope. Scopes nest; the outermost decides. A scope that never
/// ends keeps everything alive that is retired meanwhile.
template <EpochKind kind>
class EpochScope : public EpochReaders {
  public:
    EpochScope() : mark_(thisThread().marks[kIndex]) {
        if (mark_.depth++ == 0) mark(state_.now.load(std::memory_order_acquire));
        if constexpr (kind == EpochKind::Fenced) fence();
    }
    ~EpochScope() {
        if (--mark_.depth != 0) return;
        mark(0);
        if (state_.waiting[kIndex].load(std::memory_order_seq_cst) != 0) destroyRetired(kind);
    }
    EpochScope(const EpochScope&) = delete;
    EpochScope& operator=(const EpochScope&) = delete;

    /// Whether the calling thread is inside a scope of this kind.
    [[nodiscard]] static bool isInside() noexcept { return current_ && current_->marks[kIndex].depth != 0; }

  private:
    static constexpr auto kIndex = static_cast<std::size_t>(kind);

    void mark(std::uint64_t epoch) noexcept {
        if (state_.readersNeedFence.load(std::memory_order_relaxed)) {
            mark_.epoch.exchange(epoch, std::memory_order_seq_cst);
        } else {
            mark_.epoch.store(epoch, std::memory_order_release);
            std::atomic_signal_fence(
                std::memory_order_seq_cst);  // the compiler keeps the order, membarrier the rest
        }
    }
    /// Makes sure that every other thread sees the mark before this one reads on.
    void fence() noexcept {
        if constexpr (kThreadSanitizer) {  // it knows no fences
            mark_.epoch.exchange(mark_.epoch.load(std::memory_order_relaxed), std::memory_order_seq_cst);
        } else {
            std::atomic_thread_fence(std::memory_order_seq_cst);
        }
    }

    EpochReader::Mark& mark_;
};

using EpochReading = EpochScope<EpochKind::Plain>;
using FencedEpochReading = EpochScope<EpochKind::Fenced>;

}  // namespace kx
