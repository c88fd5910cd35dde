// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/DateTime/TimesOfDay.h>

namespace kx {

namespace {

std::string textOf(std::uint32_t second, const NSDateFormatter& formatter) {
    return formatter.stringFromDate(NSDate::dateWithTimeIntervalSince1970(second)).value_or("");
}

}  // namespace

std::unique_ptr<const TimesOfDay> TimesOfDay::learn(const NSDateFormatter& formatter) {
    auto learned = std::make_unique<TimesOfDay>();
    for (std::uint32_t hour = 0; hour < 24; ++hour) {
        if (!learned->learnHour(hour, formatter)) return nullptr;
    }
    return learned;
}

/// The minute stands where the texts of 00 and 11 minutes begin to differ.
bool TimesOfDay::learnHour(std::uint32_t hour, const NSDateFormatter& formatter) {
    const std::string whole = textOf(hour * 3600, formatter),
                      later = textOf(hour * 3600 + 11 * 60, formatter);
    Hour& learned = hours_[hour];
    if (whole.size() != later.size() || whole.size() > learned.text.size()) return false;
    const auto at = std::ranges::mismatch(whole, later).in1 - whole.begin();
    if (at + 2 > std::ssize(whole)) return false;
    std::ranges::copy(whole, learned.text.begin());
    learned.size = static_cast<std::uint8_t>(whole.size());
    learned.minuteAt = static_cast<std::uint8_t>(at);
    for (std::uint32_t second = hour * 3600; second < (hour + 1) * 3600; second += 59) {
        if (this->at(second) != textOf(second, formatter)) return false;
    }
    return true;
}

}  // namespace kx
