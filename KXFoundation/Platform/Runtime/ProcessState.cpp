// SPDX-License-Identifier: MIT

#include <mutex>
#include <utility>

#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {
constinit std::mutex mutex;
constinit ProcessStateBase* first = nullptr;  // guarded by mutex
}  // namespace

void ProcessStateBase::enlist() noexcept {
    const std::lock_guard lock(mutex);
    if (enlisted_.exchange(true)) return;
    next_ = std::exchange(first, this);
}

ScopedProcessState::ScopedProcessState() {
    const std::lock_guard lock(mutex);
    for (ProcessStateBase* state = first; state; state = state->next_) {
        saved_.push_back({state, state->object_.exchange(nullptr)});
    }
    bumpPortGeneration();
}

ScopedProcessState::~ScopedProcessState() {
    std::vector<std::pair<void (*)(void*), void*>> ended;
    {
        const std::lock_guard lock(mutex);
        for (ProcessStateBase* state = first; state; state = state->next_) {
            if (void* object = state->object_.exchange(nullptr)) ended.emplace_back(state->destroy_, object);
        }
        for (const Saved& saved : saved_) saved.state->object_.store(saved.object);
    }
    for (const auto& [destroy, object] : ended) destroy(object);
    bumpPortGeneration();
}

}  // namespace kx
