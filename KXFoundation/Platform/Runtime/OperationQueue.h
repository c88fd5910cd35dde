// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A background queue that runs at most a given number of operations at a time, starting them in the order of
/// their coming, and that can forget those which have not begun. What has begun ends after the queue's own
/// end too. Any thread.
class KX_EXPORT OperationQueue {
  public:
    /// `maxConcurrentOperations` below 1 counts as 1.
    OperationQueue(std::string_view label, std::size_t maxConcurrentOperations);

    using Number = std::uint64_t;
    /// Answers a number to cancel the operation by.
    Number addOperation(DispatchQueue::Block operation) { return queue_->submit(std::move(operation)); }
    /// Forgets the operation if it has not begun; false if it has.
    bool cancelOperation(Number number) { return queue_->cancel(number); }

    /// Waits until no operation runs or waits. A caller error from inside one of them.
    void waitUntilAllOperationsAreFinished() { queue_->waitUntilIdle(); }
    /// How many run or wait.
    [[nodiscard]] std::size_t operationCount() const { return queue_->unfinished(); }

    [[nodiscard]] const std::string& label() const noexcept { return queue_->label(); }
    [[nodiscard]] std::string describe() const { return queue_->describe(); }

  private:
    std::shared_ptr<DispatchQueue> queue_;
};

}  // namespace kx
