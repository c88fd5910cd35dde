// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Foundation/IcuModule.h>
#include <KXFoundation/Platform/Foundation/LocaleDates.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

constexpr std::size_t kMostLocales = 64;
constexpr std::size_t kMostPatterns = 64;
constexpr std::size_t kLongestIdentifier = 156;  // ULOC_FULLNAME_CAPACITY less its end

struct KnownLocales {
    Mutex mutex;
    std::map<std::string, std::shared_ptr<const LocaleDates>> dates KX_GUARDED_BY(mutex);
};

constinit ProcessState<KnownLocales> knownLocales;

/// What ICU is asked for: its root locale where no locale has such a name.
const char* icuLocale(const std::string& identifier) noexcept {
    return identifier.size() <= kLongestIdentifier ? identifier.c_str() : "";
}

}  // namespace

std::shared_ptr<const LocaleDates> LocaleDates::of(const std::string& identifier) {
    KnownLocales& known = knownLocales.get();
    const MutexLock lock(known.mutex);
    if (const auto found = known.dates.find(identifier); found != known.dates.end()) return found->second;
    if (known.dates.size() >= kMostLocales) known.dates.clear();
    return known.dates.emplace(identifier, std::make_shared<LocaleDates>(identifier)).first->second;
}

LocaleDates::LocaleDates(const std::string& identifier) : identifier_(identifier) {
    const IcuModule* const icu = icuModule();
    if (!icu) return;
    IcuLocale read;
    am_.clear();
    pm_.clear();
    const IcuText am(am_), pm(pm_);
    icu->readLocale(icuLocale(identifier), &read, &am, &pm);
    std::ranges::copy(read.digits, digits_.begin());
    isGregorian_ = read.isGregorian;
    if (read.firstWeekday != 0) firstWeekday_ = read.firstWeekday;
}

std::string LocaleDates::pattern(std::string_view skeleton, ClockFormat format) const {
    const MutexLock lock(mutex_);
    const auto [found, isNew] = patterns_.try_emplace({std::string(skeleton), format});
    if (isNew) found->second = bestPattern(skeleton, format);
    std::string answer = found->second;
    if (patterns_.size() > kMostPatterns) patterns_.clear();
    return answer;
}

std::string LocaleDates::bestPattern(std::string_view skeleton, ClockFormat format) const {
    // Asked for 12 hours, some locales (Japanese) would write 00 to 11.
    if (skeleton.find('h') != skeleton.npos) format = ClockFormat::TwelveHour;
    const char* const hours = format == ClockFormat::TwelveHour       ? "h12"
                              : format == ClockFormat::TwentyFourHour ? "h23"
                                                                      : nullptr;
    std::string best;
    const IcuText into(best);
    if (const IcuModule* icu = icuModule()) {
        icu->bestPattern(icuLocale(identifier_), hours, skeleton.data(),
                         static_cast<std::int32_t>(skeleton.size()), &into);
    }
    return best;
}

}  // namespace kx
