// SPDX-License-Identifier: MIT

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Runtime/Observation.h>
#include <KXFoundation/Platform/Runtime/SideRecord.h>

namespace kx {

struct ObservationToken::Observer {
    Observer(std::string_view k, ChangeOptions o, ChangeCallback c)
        : key(k), options(o), callback(std::move(c)) {}

    std::string key;
    ChangeOptions options;
    ChangeCallback callback;
    std::atomic<bool> ended = false;
};

namespace {

using Observer = ObservationToken::Observer;

bool wants(const Observer& observer, std::string_view key, ChangePhase phase) {
    return observer.key == key &&
           (static_cast<unsigned>(observer.options) & static_cast<unsigned>(phase)) != 0;
}

void notify(NSObject& object, std::string_view key, ChangePhase phase) {
    SideRecord* side = existingSideRecord(object);
    if (!side) return;
    std::vector<std::shared_ptr<Observer>> told;
    {
        const std::lock_guard lock(side->observersMutex);
        std::ranges::copy_if(side->observers, std::back_inserter(told),
                             [&](const auto& observer) { return wants(*observer, key, phase); });
    }
    const auto held = object.weak_from_this().lock();  // a callback may drop the last reference
    for (const auto& observer : told) {
        if (!observer->ended) observer->callback(object, key, phase);
    }
}

}  // namespace

ObservationToken::ObservationToken(std::weak_ptr<NSObject> object,
                                   std::shared_ptr<Observer> observer) noexcept
    : object_(std::move(object)), observer_(std::move(observer)) {}

ObservationToken& ObservationToken::operator=(ObservationToken&& other) noexcept {
    if (this == &other) return *this;
    remove();
    object_ = std::move(other.object_);
    observer_ = std::move(other.observer_);
    return *this;
}

void ObservationToken::remove() {
    const std::shared_ptr<Observer> observer = std::move(observer_);  // released after the lock
    if (!observer) return;
    observer->ended = true;
    const auto object = object_.lock();
    if (!object) return;
    SideRecord& side = sideRecord(*object);
    const std::lock_guard lock(side.observersMutex);
    std::erase(side.observers, observer);
}

ObservationToken observe(const std::shared_ptr<NSObject>& object, std::string_view key, ChangeOptions options,
                         ChangeCallback callback) {
    if (!object || !callback) return {};
    auto observer = std::make_shared<Observer>(key, options, std::move(callback));
    SideRecord& side = sideRecord(*object);
    const std::lock_guard lock(side.observersMutex);
    side.observers.push_back(observer);
    return {object, std::move(observer)};
}

void willChange(NSObject& object, std::string_view key) {
    notify(object, key, ChangePhase::Will);
}

void didChange(NSObject& object, std::string_view key) {
    notify(object, key, ChangePhase::Did);
}

}  // namespace kx
