// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Foundation/NSURLSession.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A shared pointer to a task that threads may read and change at once. Nothing is held meanwhile: whoever
/// has loaded the task keeps it.
class KX_EXPORT AtomicTask {
  public:
    constexpr AtomicTask() noexcept {}
    /// The task may be asked for while the process exits: it is never destroyed.
    ~AtomicTask() {}
    AtomicTask(const AtomicTask&) = delete;
    AtomicTask& operator=(const AtomicTask&) = delete;

    [[nodiscard]] std::shared_ptr<NSURLSessionTask> load() const;
    void store(std::shared_ptr<NSURLSessionTask> task);
    /// Stores the task where there is none; false if there is one.
    bool storeIfNone(std::shared_ptr<NSURLSessionTask> task);

  private:
    union {
        std::shared_ptr<NSURLSessionTask> task_{};
    };
};

/// The look-up in the application store that is running, or none: set when it starts, cleared when its
/// callback has returned. KXAppUtils starts and cancels it.
KX_EXPORT extern AtomicTask infoTask;

}  // namespace kx
