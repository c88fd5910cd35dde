// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

#include <KXFoundation/Platform/Runtime/Export.h>

/// A port is a small abstract class through which the library reaches the desktop. One PortSlot holds the
/// adapter in use; a test replaces it for one scope (ScopedPort). Reading a slot is one atomic load.
namespace kx {

/// Counts every replacement of any port, so that what was computed through ports can tell that it is stale.
[[nodiscard]] KX_EXPORT std::uint64_t portGeneration() noexcept;
KX_EXPORT void bumpPortGeneration() noexcept;

template <class Port>
class PortSlot {
  public:
    /// The adapter in use, made by Port::makeDefault() at first need. Valid until the slot is replaced;
    /// an object that outlives a call keeps shared() instead.
    Port& current() { return *entry().port; }
    std::shared_ptr<Port> shared() { return entry().port; }

    /// Puts another adapter in place and answers the former one; none stands for the default, which is not
    /// made before it is needed. Nobody may be using the slot meanwhile.
    std::shared_ptr<Port> replace(std::shared_ptr<Port> port) {
        Entry* former =
            entry_.exchange(port ? new Entry{std::move(port)} : nullptr, std::memory_order_acq_rel);
        bumpPortGeneration();
        std::shared_ptr<Port> answer = former ? former->port : nullptr;
        delete former;
        return answer;
    }

  private:
    struct Entry {
        std::shared_ptr<Port> port;
    };

    Entry& entry() {
        if (Entry* found = entry_.load(std::memory_order_acquire)) return *found;
        auto* made = new Entry{Port::makeDefault()};
        Entry* expected = nullptr;
        if (entry_.compare_exchange_strong(expected, made, std::memory_order_acq_rel)) return *made;
        delete made;
        return *expected;
    }

    std::atomic<Entry*> entry_{nullptr};  // never freed at exit: process-wide objects outlive everything
};

/// Replaces a port for one scope: ScopedPort<FileSystem> scope(fake). No queue may be running work meanwhile.
template <class Port>
class ScopedPort {
  public:
    explicit ScopedPort(std::shared_ptr<Port> port) : former_(Port::slot().replace(std::move(port))) {}
    ~ScopedPort() { Port::slot().replace(std::move(former_)); }
    ScopedPort(const ScopedPort&) = delete;
    ScopedPort& operator=(const ScopedPort&) = delete;

  private:
    std::shared_ptr<Port> former_;
};

}  // namespace kx
