// SPDX-License-Identifier: MIT

#include <utility>
#include <vector>

#include <KXFoundation/Cache/Disk/DiskStore.h>
#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Platform/Foundation/NSException.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {

/// The one place where an error becomes the harmless answer.
template <class T>
T answered(Result<T> result) {
    if (result) return std::move(result).value();
    logError("disk cache", result.error());
    return T();
}

bool succeeded(const Result<void>& result) {
    if (!result) logError("disk cache", result.error());
    return result.ok();
}

std::string keyText(KXCacheKey key) {
    return std::string(key.value_or(""));
}

}  // namespace

struct KXDiskCache::State : std::enable_shared_from_this<State> {
    explicit State(const std::string& path)
        : queue(DispatchQueue::serial("disk cache")), store(path, queue) {}

    /// Runs the change on the queue and calls back once it is synced. What came before the sync's turn waits
    /// for the same one.
    void changeDurably(std::function<Result<void>(disk::DiskStore&)> change, KXCacheDone done) {
        queue->async([self = shared_from_this(), change = std::move(change), done = std::move(done)] {
            succeeded(change(self->store));
            if (!done) return;
            self->waiting.push_back(done);
            if (self->waiting.size() == 1) self->queue->async([self] { self->finish(); });
        });
    }
    void finish() {
        succeeded(store.synchronize());
        for (const KXCacheDone& done : std::exchange(waiting, {})) done();
    }
    /// On the queue, where nobody could catch what a class's own decoding raises.
    Value decoded(const std::string& key) {
        try {
            return answered(store.get(key));
        } catch (const NSException& exception) {
            log(LogLevel::Warning, "disk cache: " + exception.reason());
            return {};
        }
    }
    const std::shared_ptr<DispatchQueue> queue;
    disk::DiskStore store;
    std::vector<KXCacheDone> waiting;  // the queue's own
};

bool KXDiskCache::init(std::optional<std::string_view> path) {
    if (!path || path->empty() || !NSObject::init()) return false;
    path_ = *path;
    while (path_.size() > 1 && path_.ends_with('/')) path_.pop_back();
    state_ = std::make_shared<State>(path_);
    return true;
}

std::optional<std::string> KXDiskCache::nameSpace() const {
    return path_.substr(path_.find_last_of('/') + 1);
}

bool KXDiskCache::containsObjectForKey(KXCacheKey key) {
    return key && answered(state_->store.contains(*key));
}

void KXDiskCache::containsObjectForKey(KXCacheKey key, KXCacheContains block) {
    if (!block) return;
    state_->queue->async(
        [state = state_, isKey = key.has_value(), key = keyText(key), block = std::move(block)] {
            block(key, isKey && answered(state->store.contains(key)));
        });
}

Value KXDiskCache::objectForKey(KXCacheKey key) {
    return key ? answered(state_->store.get(*key)) : Value();
}

void KXDiskCache::objectForKey(KXCacheKey key, KXCacheObject block) {
    if (!block) return;
    state_->queue->async([state = state_, isKey = key.has_value(), key = keyText(key),
                          block = std::move(block)] { block(key, isKey ? state->decoded(key) : Value()); });
}

void KXDiskCache::setObject(Value object, KXCacheKey forKey) {
    if (!forKey || object.isNull()) return;
    const auto stored = disk::StoredValue::of(std::move(object));
    succeeded(stored ? state_->store.set(*forKey, *stored) : Result<void>(stored.error()));
}

void KXDiskCache::setObject(Value object, KXCacheKey forKey, KXCacheDone block) {
    using Stored = Result<disk::StoredValue>;
    const bool isChange = forKey && !object.isNull();
    // Encoded here, before the caller changes the object further.
    const auto stored =
        isChange ? std::make_shared<Stored>(disk::StoredValue::of(std::move(object))) : nullptr;
    state_->changeDurably(
        [stored, key = keyText(forKey)](disk::DiskStore& store) -> Result<void> {
            if (!stored) return {};
            return *stored ? store.set(key, **stored) : Result<void>(stored->error());
        },
        std::move(block));
}

void KXDiskCache::removeObjectForKey(KXCacheKey key) {
    if (key) succeeded(state_->store.remove(*key));
}

void KXDiskCache::removeObjectForKey(KXCacheKey key, KXCacheKeyDone block) {
    KXCacheDone done;
    if (block) done = [block = std::move(block), text = keyText(key)] { block(text); };
    state_->changeDurably([isKey = key.has_value(), text = keyText(key)](
                              disk::DiskStore& store) { return isKey ? store.remove(text) : Result<void>(); },
                          std::move(done));
}

void KXDiskCache::removeAllObjects() {
    succeeded(state_->store.clear());
}

void KXDiskCache::removeAllObjectsWithBlock(KXCacheDone block) {
    state_->changeDurably([](disk::DiskStore& store) { return store.clear(); }, std::move(block));
}

bool KXDiskCache::synchronize() {
    return succeeded(state_->store.synchronize());
}

std::uint64_t KXDiskCache::countLimit() const {
    return state_->store.limits().count;
}

void KXDiskCache::setCountLimit(std::uint64_t limit) {
    succeeded(state_->store.changeLimits([limit](disk::DiskLimits& limits) { limits.count = limit; }));
}

std::uint64_t KXDiskCache::costLimit() const {
    return state_->store.limits().cost;
}

void KXDiskCache::setCostLimit(std::uint64_t limit) {
    succeeded(state_->store.changeLimits([limit](disk::DiskLimits& limits) { limits.cost = limit; }));
}

double KXDiskCache::ageLimit() const {
    return state_->store.limits().age;
}

void KXDiskCache::setAgeLimit(double seconds) {
    succeeded(state_->store.changeLimits(
        [seconds](disk::DiskLimits& limits) { limits.age = seconds > 0 ? seconds : 0; }));
}

std::optional<std::string> KXDiskCache::cachePathForKey(KXCacheKey key) const {
    return key ? state_->store.fileOf(*key) : std::nullopt;
}

std::optional<double> KXDiskCache::ageOfObjectForKey(KXCacheKey key) const {
    return key ? state_->store.ageOf(*key) : std::nullopt;
}

KXDiskCache::Statistics KXDiskCache::statistics() const {
    const auto found = answered(state_->store.statistics());
    return {found.hits, found.misses, found.evictions, found.count, found.cost, found.bytes};
}

}  // namespace kx
