// SPDX-License-Identifier: MIT

#include <algorithm>
#include <exception>

#include <KXFoundation/Cache/Load/CacheLoads.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {

Error failure(std::string_view why) {
    return {ErrorKind::Failed, 0, "cache load: " + std::string(why)};
}

/// What a class's own coding raises on the shared queue, where nobody could catch it.
template <class Step>
void caught(const Step& step) {
    try {
        step();
    } catch (const std::exception& exception) {
        log(LogLevel::Warning, "cache load: " + std::string(exception.what()));
    }
}

}  // namespace

void CacheLoads::look(const std::shared_ptr<Flight>& flight) {
    const DatedValue memory = inMemory(flight->key);
    const DatedValue disk = onDisk(flight->key);
    const bool isFromDisk = memory.value.isNull() || (!disk.value.isNull() && disk.setAt > memory.setAt);
    if (isFromDisk) keepInMemory(*flight, disk);
    Answers answers;
    Callers aboard;  // here, because callers are not to be destroyed under the mutex
    std::optional<KXCacheLoader> loader;
    {
        const MutexLock lock(mutex_);
        flight->found = isFromDisk ? disk : memory;
        flight->foundBy = isFromDisk ? &KXCacheLoadStatistics::diskHits : &KXCacheLoadStatistics::memoryHits;
        aboard.swap(flight->callers);
        loader = serveFound(flight, aboard, answers);
    }
    send(std::move(answers));
    if (loader) run(flight, *loader);
}

/// Answers the loader to run if there are callers who need it. Where none of them has one, nothing more can
/// be found.
std::optional<KXCacheLoader> CacheLoads::serveFound(const std::shared_ptr<Flight>& flight,
                                                    const Callers& aboard, Answers& answers) {
    for (const auto& caller : aboard)
        if (!serve(caller, flight->found, flight->foundBy, answers)) flight->callers.push_back(caller);
    const auto able = std::ranges::find_if(
        flight->callers, [](const auto& caller) { return static_cast<bool>(caller->loader); });
    if (able == flight->callers.end()) {
        const Result<Value> nothing = Error{ErrorKind::Missing, 0, "cache load: no loader"};
        for (const auto& caller : flight->callers)
            if (!caller->isAnswered) answer(caller, answerFor(*caller, *flight, nothing), answers);
        flight->callers.clear();
        end(flight);
        return std::nullopt;
    }
    ++statistics_.loads;
    flight->station = Flight::Station::Loading;
    return std::move((*able)->loader);
}

void CacheLoads::run(const std::shared_ptr<Flight>& flight, const KXCacheLoader& loader) {
    const KXCacheLoading loading(std::make_shared<KXCacheLoading::Ending>(shared_from_this(), flight));
    try {
        loader(loading);
    } catch (const std::exception& exception) {
        loading.complete(failure(exception.what()));
    } catch (...) {
        loading.complete(failure("the loader threw"));
    }
}

void CacheLoads::complete(const std::shared_ptr<Flight>& flight, Result<Value> answer) {
    {
        const MutexLock lock(mutex_);
        if (flight->station != Flight::Station::Loading) return;
        flight->station = Flight::Station::Storing;
    }
    // The loader may answer on a thread that must not wait for the disk.
    DispatchQueue::shared().async(
        [self = shared_from_this(), flight, answer = std::move(answer)] { self->settle(flight, answer); });
}

void CacheLoads::settle(const std::shared_ptr<Flight>& flight, const Result<Value>& outcome) {
    if (outcome) store(*flight, *outcome);
    Answers answers;
    Callers aboard;
    {
        const MutexLock lock(mutex_);
        if (!outcome) ++statistics_.failures;
        end(flight);
        aboard.swap(flight->callers);
        for (const auto& caller : aboard)
            if (!caller->isAnswered) answer(caller, answerFor(*caller, *flight, outcome), answers);
    }
    send(std::move(answers));
}

Result<Value> CacheLoads::answerFor(const Caller& caller, const Flight& flight,
                                    const Result<Value>& outcome) {
    const bool wantsStale = caller.options.failure == KXCacheLoadOptions::Failure::AnswerStale;
    if (outcome || !wantsStale || flight.found.value.isNull()) return outcome;
    ++statistics_.staleAnswers;
    return flight.found.value;
}

DatedValue CacheLoads::inMemory(std::string_view key) const {
    return memory_ ? fromMemory(memory_->objectForKey(key)) : DatedValue();
}

DatedValue CacheLoads::onDisk(std::string_view key) const {
    DatedValue found;
    if (!disk_) return found;
    caught([&] {
        // The age first: if the value is replaced meanwhile, it counts as older than it is.
        const auto age = disk_->ageOfObjectForKey(key);
        found.value = disk_->objectForKey(key);
        if (age) found.setAt = now() - *age;
    });
    return found;
}

bool CacheLoads::isOutdated(const Flight& flight) const {
    const MutexLock lock(mutex_);
    return flight.isOutdated;
}

void CacheLoads::keepInMemory(const Flight& flight, const DatedValue& found) {
    if (!memory_ || found.value.isNull() || isOutdated(flight)) return;
    memory_->setObject(storedInMemory(found), flight.key);
    if (isOutdated(flight)) memory_->removeObjectForKey(flight.key);
}

void CacheLoads::store(const Flight& flight, const Value& value) {
    if (isOutdated(flight)) return;
    if (value.isNull()) return removeFromStores(flight.key);
    if (memory_) memory_->setObject(storedInMemory({value, now()}), flight.key);
    if (disk_) caught([&] { disk_->setObject(value, flight.key); });
    if (isOutdated(flight)) removeFromStores(flight.key);
}

void CacheLoads::removeFromStores(std::string_view key) {
    if (memory_) memory_->removeObjectForKey(key);
    if (disk_) disk_->removeObjectForKey(key);
}

KXCacheLoading::Ending::~Ending() {
    complete(failure("the loader let go without an answer"));
}

const std::string& KXCacheLoading::key() const noexcept {
    return ending_->flight().key;
}

std::stop_token KXCacheLoading::cancellation() const noexcept {
    return ending_->flight().cancellation.get_token();
}

void KXCacheLoading::complete(Result<Value> answer) const {
    ending_->complete(std::move(answer));
}

}  // namespace kx
