// SPDX-License-Identifier: MIT

#include <cmath>
#include <cstdio>
#include <map>
#include <utility>

#include <KXFoundation/Platform/Foundation/LocalTime.h>
#include <KXFoundation/Platform/Foundation/NSTimeZone.h>
#include <KXFoundation/Platform/Foundation/ZoneRules.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

namespace {

constexpr std::int64_t kFarthestFromGMT = std::int64_t{18} * 3600;

/// Every zone that was asked for, by name: as many as the system has zone files, at most.
class LoadedZones {
  public:
    std::shared_ptr<NSTimeZone> zone(const std::string& name) {
        const MutexLock lock(mutex_);
        if (const auto found = zones_.find(name); found != zones_.end()) return found->second;
        auto rules = name == "UTC" || name == "GMT" ? std::make_shared<ZoneRules>(0) : ZoneRules::load(name);
        if (!rules) return nullptr;
        return zones_.emplace(name, make<NSTimeZone>(name, std::move(rules))).first->second;
    }

  private:
    Mutex mutex_;
    std::map<std::string, std::shared_ptr<NSTimeZone>, std::less<>> zones_ KX_GUARDED_BY(mutex_);
};

constinit ProcessState<LoadedZones> loadedZones;

std::string nameOfOffset(std::int64_t seconds) {
    if (seconds == 0) return "GMT";
    const std::int64_t minutes = std::abs(seconds) / 60;
    const auto rest = static_cast<int>(std::abs(seconds) % 60);
    char text[48];
    const int size = std::snprintf(text, sizeof text, "GMT%c%02d:%02d", seconds < 0 ? '-' : '+',
                                   static_cast<int>(minutes / 60), static_cast<int>(minutes % 60));
    if (rest != 0) std::snprintf(text + size, sizeof text - static_cast<std::size_t>(size), ":%02d", rest);
    return text;
}

}  // namespace

PortSlot<TimeZoneSettings>& TimeZoneSettings::slot() {
    static constinit PortSlot<TimeZoneSettings> slot;
    return slot;
}

bool NSTimeZone::init(std::string_view name, std::shared_ptr<const ZoneRules> rules) {
    name_ = name;
    rules_ = std::move(rules);
    return rules_ && Super::init();
}

std::shared_ptr<NSTimeZone> NSTimeZone::timeZoneWithName(std::optional<std::string_view> name) {
    if (!name || name->starts_with('/')) return nullptr;  // a path is the system's own setting only
    return loadedZones.get().zone(std::string(*name));
}

std::shared_ptr<NSTimeZone> NSTimeZone::timeZoneForSecondsFromGMT(std::int64_t seconds) {
    if (seconds < -kFarthestFromGMT || seconds > kFarthestFromGMT) return nullptr;
    return make<NSTimeZone>(nameOfOffset(seconds),
                            std::make_shared<ZoneRules>(static_cast<std::int32_t>(seconds)));
}

std::shared_ptr<NSTimeZone> NSTimeZone::systemTimeZone() {
    const std::string name = TimeZoneSettings::slot().current().systemTimeZoneName();
    if (auto zone = loadedZones.get().zone(name)) return zone;
    logError("NSTimeZone", Error{ErrorKind::Missing, 0, "rules of the system's time zone " + name});
    return loadedZones.get().zone("UTC");
}

std::int64_t NSTimeZone::secondsFromGMTForDate(const std::optional<NSDate>& date) const noexcept {
    const auto utc = wholeSeconds(date);
    return utc ? rules_->offsetAt(*utc) : 0;
}

bool NSTimeZone::isEqual(const NSObject& other) const {
    const auto* zone = dynamic_cast<const NSTimeZone*>(&other);
    return zone && zone->name_ == name_;
}

}  // namespace kx
