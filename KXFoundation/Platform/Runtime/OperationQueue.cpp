// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/OperationQueue.h>

namespace kx {

OperationQueue::OperationQueue(std::string_view label, std::size_t maxConcurrentOperations)
    : queue_(DispatchQueue::withWidth(label, maxConcurrentOperations, DispatchQueue::Thread::Background)) {}

}  // namespace kx
