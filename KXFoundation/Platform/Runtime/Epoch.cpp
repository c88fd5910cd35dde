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

constinit EpochState EpochReading::state_;
constinit thread_local EpochReader* EpochReading::current_ = nullptr;

/// The list of readers and the queue of the retired, oldest first.
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

    void retire(Retirable* item, bool readersFence) {
        MutexLock lock(mutex_);
        item->retiredIn_ = state().now.fetch_add(1, std::memory_order_seq_cst);
        (last_ ? last_->nextRetired_ : first_) = item;
        last_ = item;
        state().waiting.fetch_add(1, std::memory_order_seq_cst);
        if (!readersFence && !state().readersNeedFence.load(std::memory_order_relaxed) && hasOtherReaders()) {
            membarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED);
        }
        Retirable* ready = takeReady();
        lock.unlock();
        destroy(ready);
    }

    /// The fence stands between the caller's unlinking and the look at the marks, as a reader's stands
    /// between its mark and what it reads: one of the two sees the other.
    bool isNobodyReading() const noexcept {
        if constexpr (kThreadSanitizer) return false;  // it knows no fences
        std::atomic_thread_fence(std::memory_order_seq_cst);
        return oldestReading() == kNobody;
    }

    void collect() {
        MutexLock lock(mutex_);
        Retirable* ready = takeReady();
        lock.unlock();
        destroy(ready);
    }

  private:
    EpochDomain() { state().readersNeedFence.store(!systemOrdersReaders(), std::memory_order_relaxed); }

    static EpochState& state() noexcept { return EpochReading::state_; }

    bool hasOtherReaders() const KX_REQUIRES(mutex_) {
        for (const EpochReader* reader = firstReader(); reader; reader = reader->next) {
            if (reader->inUse && reader != EpochReading::current_) return true;
        }
        return false;
    }

    static constexpr std::uint64_t kNobody = std::numeric_limits<std::uint64_t>::max();

    std::uint64_t oldestReading() const noexcept {
        std::uint64_t oldest = kNobody;
        for (const EpochReader* reader = firstReader(); reader; reader = reader->next) {
            const std::uint64_t epoch = reader->epoch.load(std::memory_order_seq_cst);
            if (epoch != 0 && epoch < oldest) oldest = epoch;
        }
        return oldest;
    }

    /// Unlinks what was retired before the oldest reader that is still inside came in.
    Retirable* takeReady() KX_REQUIRES(mutex_) {
        const std::uint64_t oldest = oldestReading();
        Retirable* const ready = first_;
        Retirable* lastReady = nullptr;
        std::uint32_t count = 0;
        for (; first_ && first_->retiredIn_ < oldest; first_ = first_->nextRetired_, ++count)
            lastReady = first_;
        if (!lastReady) return nullptr;
        lastReady->nextRetired_ = nullptr;
        if (!first_) last_ = nullptr;
        state().waiting.fetch_sub(count, std::memory_order_relaxed);
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
    Retirable* first_ KX_GUARDED_BY(mutex_) = nullptr;
    Retirable* last_ KX_GUARDED_BY(mutex_) = nullptr;
};

void EpochReading::threadEnds(void* reader) noexcept {
    current_ = nullptr;
    EpochDomain::shared().remove(*static_cast<EpochReader*>(reader));
}

/// A thread key rather than a thread_local: its destructor runs after those of all thread_locals, which may
/// still read, and runs again should a reading of another key's destructor register the thread anew.
EpochReader& EpochReading::registerThread() {
    static const pthread_key_t key = [] {
        pthread_key_t made{};
        pthread_key_create(&made, &EpochReading::threadEnds);
        return made;
    }();
    current_ = &EpochDomain::shared().add();
    pthread_setspecific(key, current_);
    return *current_;
}

void EpochReading::destroyRetired() {
    EpochDomain::shared().collect();
}

bool isNobodyReading() noexcept {
    return EpochDomain::shared().isNobodyReading();
}

void retire(Retirable* unlinked) {
    EpochDomain::shared().retire(unlinked, false);
}

void retireFenced(Retirable* unlinked) {
    EpochDomain::shared().retire(unlinked, true);
}

}  // namespace kx
