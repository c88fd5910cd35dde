// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <utility>

#include <KXFoundation/Platform/Foundation/DatePattern.h>
#include <KXFoundation/Platform/Foundation/IcuDateFormat.h>
#include <KXFoundation/Platform/Foundation/LocalTime.h>
#include <KXFoundation/Platform/Foundation/LocaleDates.h>
#include <KXFoundation/Platform/Foundation/NSDateFormatter.h>
#include <KXFoundation/Platform/Foundation/ZoneRules.h>

namespace kx {

namespace {

constexpr std::size_t kPatternsKept = 4;
constexpr std::size_t kLongestTemplate = 128;
constexpr double kLargestSecond = 4e18;  // of those that a 64-bit count holds with room for an offset

/// Every second counts here, also where no calendar holds it: its time of day is well known.
std::optional<std::int64_t> countedSeconds(NSDate date) noexcept {
    const double seconds = std::floor(date.timeIntervalSince1970());
    return std::abs(seconds) <= kLargestSecond ? std::optional(static_cast<std::int64_t>(seconds))
                                               : std::nullopt;
}

std::string patternFor(std::string_view templateText, const NSLocale& locale, const LocaleDates& dates) {
    const bool asksForHourCycle = templateText.find('j') != templateText.npos && locale.followsClockFormat();
    const auto format =
        asksForHourCycle ? ClockFormatSetting::slot().current().clockFormat() : ClockFormat::Unset;
    return dates.pattern(templateText, format);
}

}  // namespace

struct NSDateFormatter::Pattern {
    Pattern(std::string_view templateText, std::string pattern, const LocaleDates& dates)
        : madeFrom(templateText), text(std::move(pattern)), quick(DatePattern::compile(text, dates)) {
        if (!quick) icu.emplace(text, dates.identifier());
    }

    std::string madeFrom;  // a template without "j", whose pattern never changes; else empty
    std::string text;
    std::optional<DatePattern> quick;
    std::optional<IcuDateFormat> icu;  // where the quick one cannot do it
};

std::optional<std::string> NSDateFormatter::dateFormatFromTemplate(
    std::optional<std::string_view> templateText, std::uint64_t options,
    const std::shared_ptr<NSLocale>& locale) {
    if (!templateText || templateText->size() > kLongestTemplate || options != 0) return std::nullopt;
    const auto used = locale ? locale : NSLocale::currentLocale();
    return patternFor(*templateText, *used, *LocaleDates::of(used->localeIdentifier()));
}

NSDateFormatter::NSDateFormatter() = default;
NSDateFormatter::~NSDateFormatter() = default;

bool NSDateFormatter::init() {
    locale_ = NSLocale::currentLocale();
    dates_ = LocaleDates::of(locale_->localeIdentifier());
    setTimeZone(nullptr);
    use({}, {});
    return Super::init();
}

void NSDateFormatter::use(std::string_view templateText, std::string pattern) {
    if (patterns_.size() == kPatternsKept) patterns_.erase(patterns_.begin());
    patterns_.push_back(std::make_unique<Pattern>(templateText, std::move(pattern), *dates_));
    pattern_ = patterns_.back().get();
}

const std::string& NSDateFormatter::dateFormat() const noexcept {
    return pattern_->text;
}

void NSDateFormatter::setDateFormat(std::optional<std::string_view> pattern) {
    use({}, std::string(pattern.value_or("")));
}

void NSDateFormatter::setLocalizedDateFormatFromTemplate(std::optional<std::string_view> templateText) {
    if (!templateText || templateText->size() > kLongestTemplate) return;
    for (const auto& kept : patterns_) {
        if (kept->madeFrom == *templateText && !templateText->empty()) {
            pattern_ = kept.get();
            return;
        }
    }
    const bool isFixed = templateText->find('j') == templateText->npos;
    use(isFixed ? *templateText : std::string_view(), patternFor(*templateText, *locale_, *dates_));
}

void NSDateFormatter::setLocale(std::shared_ptr<NSLocale> locale) {
    locale_ = locale ? std::move(locale) : NSLocale::currentLocale();
    std::string pattern = dateFormat();
    patterns_.clear();  // they belong to the former locale's data
    dates_ = LocaleDates::of(locale_->localeIdentifier());
    use({}, std::move(pattern));
}

void NSDateFormatter::setTimeZone(std::shared_ptr<NSTimeZone> zone) {
    zone_ = zone ? std::move(zone) : NSTimeZone::systemTimeZone();
}

std::optional<std::string> NSDateFormatter::stringFromDate(const std::optional<NSDate>& date) const {
    std::optional<std::string> text;  // made in its place
    const auto utc = date ? countedSeconds(*date) : std::nullopt;
    if (!utc) return text;
    const std::int32_t offset = zone_->rules().offsetAt(*utc);
    if (pattern_->quick) {
        pattern_->quick->append(text.emplace(), *utc + offset);
    } else {
        text = pattern_->icu->format(date->timeIntervalSince1970(), offset, zone_->name());
    }
    return text;
}

std::optional<NSDate> NSDateFormatter::dateFromString(std::optional<std::string_view> text) const {
    if (!text) return std::nullopt;
    const auto dateAt = [](double seconds) { return NSDate::dateWithTimeIntervalSince1970(seconds); };
    const auto utcOf = [&](std::int64_t local) {
        return static_cast<double>(zone_->rules().instantsAt(local).before);
    };
    if (pattern_->quick) {
        const auto local = pattern_->quick->parse(*text);
        return local ? std::optional(dateAt(utcOf(*local))) : std::nullopt;
    }
    const auto parsed = pattern_->icu->parse(*text);
    if (!parsed) return std::nullopt;
    if (parsed->namesZone) return dateAt(parsed->seconds);
    const double whole = std::floor(parsed->seconds);
    if (!(std::abs(whole) <= kLargestSecond)) return std::nullopt;
    return dateAt(utcOf(static_cast<std::int64_t>(whole)) + (parsed->seconds - whole));
}

std::string NSDateFormatter::AMSymbol() const {
    return dates_->amSymbol();
}

std::string NSDateFormatter::PMSymbol() const {
    return dates_->pmSymbol();
}

}  // namespace kx
