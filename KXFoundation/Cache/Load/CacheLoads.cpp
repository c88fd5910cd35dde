// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <chrono>

#include <KXFoundation/Cache/Load/CacheLoads.h>

namespace kx {

namespace {

enum class Freshness : std::uint8_t { Fresh, Stale, Expired };

bool isWithin(double age, double limit) {
    return age < limit || limit == KXCacheLoadOptions::kForever;
}

Freshness freshness(const DatedValue& found, const KXCacheLoadOptions& options, double now) {
    if (found.value.isNull()) return Freshness::Expired;
    const double age = found.setAt <= now ? now - found.setAt : KXCacheLoadOptions::kForever;
    const double fresh = std::max(0.0, options.freshFor);  // in this order 0 for what is not a number
    if (isWithin(age, fresh)) return Freshness::Fresh;
    return isWithin(age, fresh + std::max(0.0, options.staleFor)) ? Freshness::Stale : Freshness::Expired;
}

}  // namespace

CacheLoads::CacheLoads(std::shared_ptr<KXMemoryCacheProtocol> memory,
                       std::shared_ptr<KXDiskCacheProtocol> disk)
    : memory_(std::move(memory)), disk_(std::move(disk)), clock_(Clock::slot().shared()) {}

std::shared_ptr<CacheLoads::Caller> CacheLoads::caller(KXCacheKey key, KXCacheLoader loader,
                                                       KXCacheLoadOptions options, KXCacheLoaded completion) {
    auto caller = std::make_shared<Caller>();
    if (key) caller->key = *key;
    caller->loader = std::move(loader);
    caller->options = std::move(options);
    caller->completion = std::move(completion);
    return caller;
}

void CacheLoads::Caller::Canceller::operator()() const {
    // The caller's last reference may be this one, and this object its part: nothing is touched afterwards.
    const auto cancelling = loads.lock();
    const auto cancelled = caller.lock();
    if (cancelling && cancelled) cancelling->cancel(cancelled);
}

void CacheLoads::begin(const std::shared_ptr<Caller>& caller) {
    if (caller->options.cancellation.stop_requested()) return cancel(caller);
    const DatedValue found = caller->key ? inMemory(*caller->key) : DatedValue();
    Answers answers;
    std::shared_ptr<Flight> begun;
    {
        const MutexLock lock(mutex_);
        if (!caller->key) {
            answer(caller, Error{ErrorKind::Missing, 0, "cache load: no key"}, answers);
        } else if (!serve(caller, found, &KXCacheLoadStatistics::memoryHits, answers)) {
            begun = board(caller, answers);
        }
    }
    send(std::move(answers));
    if (begun) DispatchQueue::shared().async([self = shared_from_this(), begun] { self->look(begun); });
    listen(caller);
}

void CacheLoads::listen(const std::shared_ptr<Caller>& caller) {
    const auto& token = caller->options.cancellation;
    if (token.stop_possible()) caller->listening.emplace(token, Caller::Canceller{weak_from_this(), caller});
}

/// Answers the flight if it has to begin.
std::shared_ptr<CacheLoads::Flight> CacheLoads::board(const std::shared_ptr<Caller>& caller,
                                                      Answers& answers) {
    const auto [place, begins] = flights_.try_emplace(*caller->key);
    if (begins) place->second = std::make_shared<Flight>(*caller->key);
    const auto flight = place->second;
    if (begins) {
        flightCount_ = flights_.size();
        if (changesOf(*caller->key) != 0 || changesOfAll_ != 0) outdate(place);
    } else {
        ++statistics_.joined;
        if (serve(caller, flight->found, flight->foundBy, answers)) return nullptr;
    }
    caller->flight = flight;
    flight->callers.push_back(caller);
    return begins ? flight : nullptr;
}

/// Answers the caller if what was found is not too old for it; whether nothing newer is needed.
bool CacheLoads::serve(const std::shared_ptr<Caller>& caller, const DatedValue& found,
                       std::uint64_t KXCacheLoadStatistics::*hits, Answers& answers) {
    const Freshness age = freshness(found, caller->options, now());
    if (age != Freshness::Expired && !caller->isAnswered) {
        ++(statistics_.*(age == Freshness::Fresh ? hits : &KXCacheLoadStatistics::staleAnswers));
        answer(caller, found.value, answers);
    }
    return age == Freshness::Fresh;
}

void CacheLoads::answer(const std::shared_ptr<Caller>& caller, Result<Value> with, Answers& answers) {
    caller->isAnswered = true;
    answers.emplace_back(caller, std::move(with));
}

void CacheLoads::send(Answers&& answers) {
    for (auto& [caller, answer] : answers) {
        if (!caller->completion) continue;
        auto& queue = caller->options.queue ? *caller->options.queue : DispatchQueue::main();
        queue.async(
            [completion = std::move(caller->completion), answer = std::move(answer)] { completion(answer); });
    }
}

void CacheLoads::cancel(const std::shared_ptr<Caller>& caller) {
    Answers answers;
    std::shared_ptr<Flight> abandoned;
    {
        const MutexLock lock(mutex_);
        if (caller->isAnswered) return;
        ++statistics_.cancelled;
        answer(caller, Error::fromErrno(ECANCELED, "cache load"), answers);
        abandoned = leave(caller);
    }
    send(std::move(answers));
    if (abandoned) abandoned->cancellation.request_stop();
}

/// Answers the flight if its loader works for nobody now. One that looks or stores ends by itself, in a
/// moment.
std::shared_ptr<CacheLoads::Flight> CacheLoads::leave(const std::shared_ptr<Caller>& caller) {
    auto flight = caller->flight.lock();
    if (!flight) return nullptr;
    std::erase(flight->callers, caller);
    if (flight->station != Flight::Station::Loading || !flight->callers.empty()) return nullptr;
    end(flight);
    return flight;
}

void CacheLoads::end(const std::shared_ptr<Flight>& flight) {
    flight->station = Flight::Station::Over;
    if (flight->isOutdated) return;  // another may fly under its key
    flights_.erase(flight->key);
    flightCount_ = flights_.size();
}

void CacheLoads::outdate(KXCacheKey key) {
    if (flightCount_ == 0 || !key) return;
    const MutexLock lock(mutex_);
    outdate(flights_.find(*key));
}

void CacheLoads::outdate(Flights::iterator place) {
    if (place == flights_.end()) return;
    place->second->isOutdated = true;
    flights_.erase(place);
    flightCount_ = flights_.size();
}

void CacheLoads::outdateAll() {
    if (flightCount_ == 0) return;
    const MutexLock lock(mutex_);
    for (const auto& [key, flight] : flights_) flight->isOutdated = true;
    flights_.clear();
    flightCount_ = 0;
}

CacheLoads::ChangeCount& CacheLoads::changesOf(std::string_view key) noexcept {
    return changes_[std::hash<std::string_view>()(key) % changes_.size()];
}

CacheLoads::Change::Change(std::shared_ptr<CacheLoads> loads, KXCacheKey key)
    : loads_(std::move(loads)), count_(key ? &loads_->changesOf(*key) : nullptr) {
    if (count_) ++*count_;
    loads_->outdate(key);
}

CacheLoads::Change::Change(std::shared_ptr<CacheLoads> ofAll)
    : loads_(std::move(ofAll)), count_(&loads_->changesOfAll_) {
    ++*count_;
    loads_->outdateAll();
}

void CacheLoads::Change::end() noexcept {
    if (ChangeCount* const count = std::exchange(count_, nullptr)) --*count;
}

KXCacheLoadStatistics CacheLoads::statistics() const {
    const MutexLock lock(mutex_);
    return statistics_;
}

double CacheLoads::now() const {
    return std::chrono::duration<double>(clock_->wallTime().time_since_epoch()).count();
}

}  // namespace kx
