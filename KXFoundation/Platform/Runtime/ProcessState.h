// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

/// Process-wide state (the standard defaults, the main bundle, the notification centre) that is made at first
/// use and never destroyed. It is declared through ProcessState so that a test can set it all aside for a
/// scope:
///
///     static constinit ProcessState<MainBundle> state;
///     state.get().path = ...
namespace kx {

class KX_EXPORT ProcessStateBase {
  public:
    ProcessStateBase(const ProcessStateBase&) = delete;
    ProcessStateBase& operator=(const ProcessStateBase&) = delete;

  protected:
    constexpr ProcessStateBase() noexcept = default;
    ~ProcessStateBase() = default;

    void enlist() noexcept;  // known to ScopedProcessState from its first use on

    std::atomic<void*> object_{nullptr};
    Mutex making_;  // held while the object is made

  private:
    friend class ScopedProcessState;
    std::atomic<bool> enlisted_{false};
    ProcessStateBase* next_ = nullptr;
    void (*destroy_)(void*) = nullptr;

  protected:
    constexpr void setDestroyer(void (*destroy)(void*)) noexcept { destroy_ = destroy; }
};

template <class T>
class ProcessState : public ProcessStateBase {
  public:
    constexpr ProcessState() noexcept {
        setDestroyer([](void* object) { delete static_cast<T*>(object); });
    }

    /// The one object, made with T() at first need, once: who asks meanwhile waits. Any thread may ask; what
    /// T allows is T's affair.
    T& get() {
        if (void* found = object_.load(std::memory_order_acquire)) return *static_cast<T*>(found);
        const MutexLock lock(making_);
        if (void* found = object_.load(std::memory_order_acquire)) return *static_cast<T*>(found);
        enlist();
        T* const made = new T();
        object_.store(made, std::memory_order_release);
        return *made;
    }
};

/// Sets every process-wide object aside, so that this scope begins as a fresh process, and brings them back
/// at its end. No other thread may be running library code at either moment.
class KX_EXPORT ScopedProcessState {
  public:
    ScopedProcessState();
    ~ScopedProcessState();
    ScopedProcessState(const ScopedProcessState&) = delete;
    ScopedProcessState& operator=(const ScopedProcessState&) = delete;

  private:
    struct Saved {
        ProcessStateBase* state;
        void* object;
    };
    std::vector<Saved> saved_;
};

}  // namespace kx
