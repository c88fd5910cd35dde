#include <atomic>
#include <chrono>
#include <utility>

#include <KXFoundation/DateTime/KXDateUtils.h>
#include <KXFoundation/Platform/Foundation/ClockFormatSetting.h>
#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Foundation/NSNotificationNames.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

struct Shared {
    std::shared_ptr<KXDateUtils> dates = make<KXDateUtils>();
};

constinit ProcessState<Shared> shared;

/// How the user's locale writes an hour.
struct HourForm {
    bool hasMarker;
    bool isMarkerFirst;
};

HourForm askForHourForm() {
    const auto pattern =
        NSDateFormatter::dateFormatFromTemplate("j", 0, NSLocale::currentLocale()).value_or("");
    return {pattern.find('a') != pattern.npos, pattern.starts_with('a')};
}

/// Asked afresh at every call; the locale data are only looked at when one of the two settings has changed.
/// What is kept is one word: the state of the settings that it was computed for, and the answer.
HourForm hourForm() {
    static constinit std::atomic<std::uint64_t> known{0};
    const auto format = static_cast<std::uint64_t>(ClockFormatSetting::slot().current().clockFormat());
    const std::uint64_t state = (NSLocale::settingsVersion() << 4) | (format << 2);
    const std::uint64_t last = known.load(std::memory_order_relaxed);
    if ((last & ~std::uint64_t{3}) == state) return {(last & 1) != 0, (last & 2) != 0};
    const HourForm form = askForHourForm();
    known.store(state | (form.hasMarker ? 1U : 0U) | (form.isMarkerFirst ? 2U : 0U),
                std::memory_order_relaxed);
    return form;
}

using Template = std::optional<std::string_view>;  // as formatters take them

const Template& templateFor(bool hasAMPM, bool isAMPMFirst) noexcept {
    static constexpr Template kPlain = "HH:mm", kMarkerFirst = "ahh:mm", kMarkerLast = "hh:mma";
    if (!hasAMPM) return kPlain;
    return isAMPMFirst ? kMarkerFirst : kMarkerLast;
}

const Template& userTemplate() {
    const HourForm form = hourForm();
    return templateFor(form.hasMarker, form.isMarkerFirst);
}

/// The 64-bit product, wrapped around where it does not fit.
std::int64_t secondsOf(std::int64_t minutes) noexcept {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(minutes) * 60);
}

}  // namespace

std::shared_ptr<KXDateUtils> KXDateUtils::sharedInstance() {
    return shared.get().dates;
}

bool KXDateUtils::init() {
    if (!Super::init()) return false;
    auto formatter = make<NSDateFormatter>();
    formatter->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(0));
    formatter->setLocalizedDateFormatFromTemplate(userTemplate());
    setSingleDateTimeFormatter(std::move(formatter));
    NSNotificationCenter::defaultCenter().addObserver(self(), &KXDateUtils::appWillEnterForeground,
                                                      NSApplicationWillBecomeActiveNotification);
    return true;
}

KXDateUtils::~KXDateUtils() {
    NSNotificationCenter::defaultCenter().removeObserver(*this);
}

bool KXDateUtils::hasAMPM() {
    return hourForm().hasMarker;
}

bool KXDateUtils::isAMPMFirst() const {
    return hourForm().isMarkerFirst;
}

std::string KXDateUtils::getTimeFormat() const {
    return std::string(*userTemplate());
}

std::optional<std::string> KXDateUtils::convert(std::int64_t seconds,
                                                const std::optional<std::string_view>& timeTemplate) const {
    const MutexLock lock(mutex_);
    if (!formatter_) return std::nullopt;
    formatter_->setLocalizedDateFormatFromTemplate(timeTemplate);
    return formatter_->stringFromDate(NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds)));
}

std::optional<std::string> KXDateUtils::convertSecondsToTimeString(std::int64_t seconds) const {
    return convert(seconds, userTemplate());
}

std::optional<std::string> KXDateUtils::convertMinutesToTimeString(std::int64_t minutes) const {
    return convertSecondsToTimeString(secondsOf(minutes));
}

std::optional<std::string> KXDateUtils::convertMinutesToTimeString(std::int64_t minutes, bool hasAMPM,
                                                                   bool isAMPMFirst) const {
    return convert(secondsOf(minutes), templateFor(hasAMPM, isAMPMFirst));
}

std::optional<std::string> KXDateUtils::AMSymbol() const {
    const MutexLock lock(mutex_);
    return formatter_ ? std::optional(formatter_->AMSymbol()) : std::nullopt;
}

std::optional<std::string> KXDateUtils::PMSymbol() const {
    const MutexLock lock(mutex_);
    return formatter_ ? std::optional(formatter_->PMSymbol()) : std::nullopt;
}

void KXDateUtils::appWillEnterForeground() {
    {
        const MutexLock lock(mutex_);
        if (formatter_) formatter_->setLocalizedDateFormatFromTemplate(userTemplate());
    }
    DispatchQueue::main().after(std::chrono::seconds(1), [] {
        NSNotificationCenter::defaultCenter().postNotificationName(KXDateUtilsUpdateTimeNotification);
    });
}

std::shared_ptr<NSDateFormatter> KXDateUtils::singleDateTimeFormatter() const {
    const MutexLock lock(mutex_);
    return formatter_;
}

void KXDateUtils::setSingleDateTimeFormatter(std::shared_ptr<NSDateFormatter> formatter) {
    const MutexLock lock(mutex_);
    formatter_.swap(formatter);  // the former one is released after the lock
}

}  // namespace kx
