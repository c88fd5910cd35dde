// SPDX-License-Identifier: MIT

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/Load/CacheLoads.h>

namespace kx {

struct KXCacheLoadAnswer::Waiting {
    explicit Waiting(std::shared_ptr<CacheLoads::Caller> waits) : caller(std::move(waits)) {}

    void resume(const Result<Value>& answer) {
        const auto waiting = coroutine.exchange(nullptr);
        if (!waiting) return;  // it was destroyed meanwhile
        outcome = answer;
        waiting.resume();
    }

    const std::shared_ptr<CacheLoads::Caller> caller;
    std::atomic<std::coroutine_handle<>> coroutine{nullptr};
    std::optional<Result<Value>> outcome{};
};

KXCacheLoadAnswer KXCache::load(KXCacheKey key, KXCacheLoader loader, KXCacheLoadOptions options) {
    auto caller = CacheLoads::caller(key, std::move(loader), std::move(options), nullptr);
    return {loads_, std::make_shared<KXCacheLoadAnswer::Waiting>(std::move(caller))};
}

void KXCache::load(KXCacheKey key, KXCacheLoader loader, KXCacheLoadOptions options,
                   KXCacheLoaded completion) {
    loads_->begin(CacheLoads::caller(key, std::move(loader), std::move(options), std::move(completion)));
}

KXCacheLoadStatistics KXCache::loadStatistics() const {
    return loads_->statistics();
}

KXCacheLoadAnswer::~KXCacheLoadAnswer() {
    if (waiting_->coroutine.exchange(nullptr)) loads_->cancel(waiting_->caller);
}

void KXCacheLoadAnswer::await_suspend(std::coroutine_handle<> coroutine) {
    // The coroutine may go on, and this object be gone, as soon as the load has begun.
    const auto loads = loads_;
    const auto waiting = waiting_;
    waiting->coroutine = coroutine;
    waiting->caller->completion = [waiting](const Result<Value>& answer) { waiting->resume(answer); };
    loads->begin(waiting->caller);
}

Result<Value> KXCacheLoadAnswer::await_resume() {
    return std::move(*waiting_->outcome);
}

}  // namespace kx
