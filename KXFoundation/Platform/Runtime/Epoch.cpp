// SPDX-License-Identifier: MIT

#include <limits>

#include <linux/membarrier.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/Epoch.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

namespace {

long membarrier(int command) noexcept {
    return syscall(SYS_membarrier, command, 0, 0);
}

/// ThreadSanitizer cannot see what the system call orders.
bool systemOrdersReaders() noexcept {
    return !kThreadSanitizer && membarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) == 0;
}

}  // namespace

constinit EpochState EpochReaders::state_;
constinit thread_local EpochReader* EpochReaders::current_ = nullptr;

/// The list of readers and, for each kind, the queue of the retired, oldest first.
class EpochDomain {
  public:
    static EpochDomain& shared() {
        static auto& domain = *new EpochDomain;
        return domain;
    }

    EpochReader& add() {
        const MutexLock lock(mutex_);
        EpochReader* const first = firstReader();
        EpochReader* reader = first;
        while (reader && reader->inUse) reader = reader->next;
        if (!reader) {
            reader = new EpochReader;
            reader->next = first;
            reader->number = first ? first->number + 1 : 0;
            readers_.store(reader, std::memory_order_release);
        }
        reader->inUse = true;
        return *reader;
    }

    void remove(EpochReader& reader) {
        const MutexLock lock(mutex_);
        reader.inUse = false;
    }

    void retire(Retirable* item, EpochKind kind) {
        MutexLock lock(mutex_);
        item->retiredIn_ = state().now.fetch_add(1, std::memory_order_seq_cst);
        Queue& queue = queueOf(kind);
        (queue.last ? queue.last->nextRetired_ : queue.first) = item;
        queue.last = item;
        waiting(kind).fetch_add(1, std::memory_order_seq_cst);
        if (kind == EpochKind::Plain || oldestReading(kind) != kNobody) orderReaders();
        Retirable* ready = takeReady(kind);
        lock.unlock();
        destroy(ready);
    }

    /// The fence stands between the caller's unlinking and the look at the marks, as a reader's stands
    /// between its mark and what it reads: one of the two sees the other.
    bool isNobodyReadingFenced() const noexcept {
        if constexpr (kThreadSanitizer) return false;  // it knows no fences
        std::atomic_thread_fence(std::memory_order_seq_cst);
        return oldestReading(EpochKind::Fenced) == kNobody;
    }

    void collect(EpochKind kind) {
        MutexLock lock(mutex_);
        Retirable* ready = takeReady(kind);
        lock.unlock();
        destroy(ready);
    }

  private:
    EpochDomain() { state().readersNeedFence.store(!systemOrdersReaders(), std::memory_order_relaxed); }

    struct Queue {
        Retirable* first = nullptr;
        Retirable* last = nullptr;
    };

    static EpochState& state() noexcept { return EpochReaders::state_; }
    static std::atomic<std::uint32_t>& waiting(EpochKind kind) noexcept {
        return state().waiting[static_cast<std::size_t>(kind)];
    }
    Queue& queueOf(EpochKind kind) KX_REQUIRES(mutex_) { return queues_[static_cast<std::size_t>(kind)]; }

    /// Every other thread has seen by now what this one unlinked, or is seen to be inside; and one that was
    /// leaving is seen to be outside, or will see what waits.
    void orderReaders() KX_REQUIRES(mutex_) {
        if (state().readersNeedFence.load(std::memory_order_relaxed)) return;
        for (const EpochReader* reader = firstReader(); reader; reader = reader->next) {
            if (!reader->inUse || reader == EpochReaders::current_) continue;
            membarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED);
            return;
        }
    }

    static constexpr std::uint64_t kNobody = std::numeric_limits<std::uint64_t>::max();

    std::uint64_t oldestReading(EpochKind kind) const noexcept {
        std::uint64_t oldest = kNobody;
        for (const EpochReader* reader = firstReader(); reader; reader = reader->next) {
            const std::uint64_t epoch =
                reader->marks[static_cast<std::size_t>(kind)].epoch.load(std::memory_order_seq_cst);
            if (epoch != 0 && epoch < oldest) oldest = epoch;
        }
        return oldest;
    }

    /// Unlinks what was retired before the oldest reader that is still inside came in.
    Retirable* takeReady(EpochKind kind) KX_REQUIRES(mutex_) {
        auto& [first, last] = queueOf(kind);
        const std::uint64_t oldest = oldestReading(kind);
        Retirable* const ready = first;
        Retirable* lastReady = nullptr;
        std::uint32_t count = 0;
        for (; first && first->retiredIn_ < oldest; first = first->nextRetired_, ++count) lastReady = first;
        if (!lastReady) return nullptr;
        lastReady->nextRetired_ = nullptr;
        if (!first) last = nullptr;
        waiting(kind).fetch_sub(count, std::memory_order_relaxed);
        return ready;
    }

    static void destroy(Retirable* ready) {
        while (ready) {
            Retirable* next = ready->nextRetired_;
            delete ready;
            ready = next;
        }
    }

    EpochReader* firstReader() const noexcept { return readers_.load(std::memory_order_acquire); }

    Mutex mutex_;
    std::atomic<EpochReader*> readers_{
        nullptr};  // written under the lock; grows to the most threads at a time
    Queue queues_[kEpochKinds] KX_GUARDED_BY(mutex_);
};

void EpochReaders::threadEnds(void* reader) noexcept {
    current_ = nullptr;
    EpochDomain::shared().remove(*static_cast<EpochReader*>(reader));
}

/// A thread key rather than a thread_local: its destructor runs after those of all thread_locals, which may
/// still read, and runs again should a reading of another key's destructor register the thread anew.
EpochReader& EpochReaders::registerThread() {
    static const pthread_key_t key = [] {
        pthread_key_t made{};
        pthread_key_create(&made, &EpochReaders::threadEnds);
        return made;
    }();
    current_ = &EpochDomain::shared().add();
    pthread_setspecific(key, current_);
    return *current_;
}

void EpochReaders::destroyRetired(EpochKind kind) {
    EpochDomain::shared().collect(kind);
}

bool isNobodyReadingFenced() noexcept {
    return EpochDomain::shared().isNobodyReadingFenced();
}

void retire(Retirable* unlinked) {
    EpochDomain::shared().retire(unlinked, EpochKind::Plain);
}

void retireFenced(Retirable* unlinked) {
    EpochDomain::shared().retire(unlinked, EpochKind::Fenced);
}

}  // namespace kx
