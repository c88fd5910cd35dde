// SPDX-License-Identifier: MIT

#include <array>
#include <atomic>
#include <chrono>
#include <utility>

#include <KXFoundation/DateTime/KXDateUtils.h>
#include <KXFoundation/DateTime/TimesOfDay.h>
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

constexpr std::int64_t kSecondsPerDay = 86'400;
// Up to here every whole second is a date of its own, counted from 1970 and from 2001.
constexpr std::int64_t kExactSeconds = std::int64_t{1} << 52;

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

/// Another number after every change of the locale or the clock's format, the lowest two bits 0.
std::uint64_t stateOfSettings() noexcept {
    const auto format = static_cast<std::uint64_t>(ClockFormatSetting::slot().current().clockFormat());
    return (NSLocale::settingsVersion() << 4) | (format << 2);
}

/// Asked afresh at every call; the locale data are only looked at when one of the two settings has changed.
/// What is kept is one word: the state of the settings that it was computed for, and the answer.
HourForm hourForm() {
    static constinit std::atomic<std::uint64_t> known{0};
    const std::uint64_t state = stateOfSettings();
    const std::uint64_t last = known.load(std::memory_order_relaxed);
    if ((last & ~std::uint64_t{3}) == state) return {(last & 1) != 0, (last & 2) != 0};
    const HourForm form = askForHourForm();
    if (stateOfSettings() != state) return form;  // of which state it is nobody knows
    known.store(state | (form.hasMarker ? 1U : 0U) | (form.isMarkerFirst ? 2U : 0U),
                std::memory_order_relaxed);
    return form;
}

/// The 64-bit product, wrapped around where it does not fit.
std::int64_t secondsOf(std::int64_t minutes) noexcept {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(minutes) * 60);
}

}  // namespace

enum class KXDateUtils::Form : std::uint8_t { Plain, MarkerFirst, MarkerLast };

/// The texts of a formatter that nobody else knows. No setting of it can change, so the texts of each form
/// are learned from it once.
struct KXDateUtils::OwnTexts {
    static constexpr std::size_t kForms = 3;

    std::array<std::atomic<const TimesOfDay*>, kForms> ready{};  // none: ask the formatter
    std::atomic<Form> last{};                                    // what the formatter's pattern stands for
    // Changed under the lock. What was learned stays to the end: a conversion may be under way with it.
    std::array<std::unique_ptr<const TimesOfDay>, kForms> learned;
    std::array<bool, kForms> wasTried{};
    bool isOver = false;

    void learn(Form form, const NSDateFormatter& formatter) {
        const auto index = static_cast<std::size_t>(form);
        if (isOver || std::exchange(wasTried[index], true)) return;
        learned[index] = TimesOfDay::learn(formatter);
        ready[index].store(learned[index].get(), std::memory_order_release);
    }
};

std::shared_ptr<KXDateUtils> KXDateUtils::sharedInstance() {
    return shared.get().dates;
}

KXDateUtils::KXDateUtils() : own_(std::make_unique<OwnTexts>()) {}

bool KXDateUtils::init() {
    if (!Super::init()) return false;
    {
        const MutexLock lock(mutex_);
        formatter_ = make<NSDateFormatter>();
        formatter_->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(0));
        usePattern(userForm());
    }
    NSNotificationCenter::defaultCenter().addObserver(self(), &KXDateUtils::appWillEnterForeground,
                                                      NSApplicationWillBecomeActiveNotification);
    return true;
}

KXDateUtils::~KXDateUtils() {
    NSNotificationCenter::defaultCenter().removeObserver(*this);
}

KXDateUtils::Form KXDateUtils::formFor(bool hasAMPM, bool isAMPMFirst) noexcept {
    if (!hasAMPM) return Form::Plain;
    return isAMPMFirst ? Form::MarkerFirst : Form::MarkerLast;
}

KXDateUtils::Form KXDateUtils::userForm() {
    const HourForm form = hourForm();
    return formFor(form.hasMarker, form.isMarkerFirst);
}

const std::optional<std::string_view>& KXDateUtils::templateOf(Form form) noexcept {
    static constexpr std::optional<std::string_view> kTemplates[OwnTexts::kForms] = {"HH:mm", "ahh:mm",
                                                                                     "hh:mma"};
    return kTemplates[static_cast<std::size_t>(form)];
}

bool KXDateUtils::hasAMPM() {
    return hourForm().hasMarker;
}

bool KXDateUtils::isAMPMFirst() const {
    return hourForm().isMarkerFirst;
}

std::string KXDateUtils::getTimeFormat() const {
    return std::string(*templateOf(userForm()));
}

void KXDateUtils::usePattern(Form form) const {
    if (!formatter_) return;
    formatter_->setLocalizedDateFormatFromTemplate(templateOf(form));
    own_->last.store(form, std::memory_order_relaxed);
}

std::optional<std::string> KXDateUtils::convert(std::int64_t seconds, Form form) const {
    const auto* times = own_->ready[static_cast<std::size_t>(form)].load(std::memory_order_acquire);
    if (!times || seconds > kExactSeconds || seconds < -kExactSeconds)
        return convertByFormatter(seconds, form);
    if (own_->last.load(std::memory_order_relaxed) != form) own_->last.store(form, std::memory_order_relaxed);
    const std::int64_t rest = seconds % kSecondsPerDay;
    return times->at(static_cast<std::uint32_t>(rest < 0 ? rest + kSecondsPerDay : rest));
}

std::optional<std::string> KXDateUtils::convertByFormatter(std::int64_t seconds, Form form) const {
    const MutexLock lock(mutex_);
    if (!formatter_) return std::nullopt;
    usePattern(form);
    own_->learn(form, *formatter_);
    return formatter_->stringFromDate(NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds)));
}

std::optional<std::string> KXDateUtils::convertSecondsToTimeString(std::int64_t seconds) const {
    return convert(seconds, userForm());
}

std::optional<std::string> KXDateUtils::convertMinutesToTimeString(std::int64_t minutes) const {
    return convertSecondsToTimeString(secondsOf(minutes));
}

std::optional<std::string> KXDateUtils::convertMinutesToTimeString(std::int64_t minutes, bool hasAMPM,
                                                                   bool isAMPMFirst) const {
    return convert(secondsOf(minutes), formFor(hasAMPM, isAMPMFirst));
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
        usePattern(userForm());
    }
    DispatchQueue::main().after(std::chrono::seconds(1), [] {
        NSNotificationCenter::defaultCenter().postNotificationName(KXDateUtilsUpdateTimeNotification);
    });
}

/// From now on others may change the formatter, so that conversions have to ask it.
void KXDateUtils::endOwnTexts() const {
    if (std::exchange(own_->isOver, true)) return;
    for (auto& times : own_->ready) times.store(nullptr, std::memory_order_release);
    usePattern(own_->last.load(std::memory_order_relaxed));
}

std::shared_ptr<NSDateFormatter> KXDateUtils::singleDateTimeFormatter() const {
    const MutexLock lock(mutex_);
    endOwnTexts();
    return formatter_;
}

void KXDateUtils::setSingleDateTimeFormatter(std::shared_ptr<NSDateFormatter> formatter) {
    const MutexLock lock(mutex_);
    endOwnTexts();
    formatter_.swap(formatter);  // the former one is released after the lock
}

}  // namespace kx
