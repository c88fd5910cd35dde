// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <KXFoundation/Platform/Foundation/ClockFormatSetting.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

/// What the locale data (ICU) says about dates in one locale. Private to Foundation. Where the module for ICU
/// is missing: Latin digits, AM and PM, the Gregorian calendar, weeks from Sunday, no patterns.
namespace kx {

class LocaleDates {
  public:
    /// The same object for an identifier again and again, up to 64 of them; the first time takes up to a
    /// millisecond. An unknown locale has the data of its language, else the root's. Any thread.
    [[nodiscard]] static std::shared_ptr<const LocaleDates> of(const std::string& identifier);

    explicit LocaleDates(const std::string& identifier);

    [[nodiscard]] const std::string& identifier() const noexcept { return identifier_; }
    [[nodiscard]] const std::string& amSymbol() const noexcept { return am_; }
    [[nodiscard]] const std::string& pmSymbol() const noexcept { return pm_; }
    /// The digits 0 to 9 in UTF-8; empty ones where numbers are not written with ten digits.
    [[nodiscard]] const std::array<std::string, 10>& digits() const noexcept { return digits_; }
    [[nodiscard]] bool usesGregorianCalendar() const noexcept { return isGregorian_; }
    /// 1 for Sunday to 7 for Saturday.
    [[nodiscard]] std::int64_t firstWeekday() const noexcept { return firstWeekday_; }

    /// The locale's arrangement of a skeleton's fields (Unicode Technical Standard #35), hours as wide as in
    /// the skeleton; "j" is the hour in the user's format. Kept: an answer is computed once.
    [[nodiscard]] std::string pattern(std::string_view skeleton, ClockFormat format) const;

  private:
    [[nodiscard]] std::string bestPattern(std::string_view skeleton, ClockFormat format) const;

    std::string identifier_, am_ = "AM", pm_ = "PM";
    std::array<std::string, 10> digits_{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"};
    bool isGregorian_ = true;
    std::int64_t firstWeekday_ = 1;
    mutable Mutex mutex_;
    mutable std::map<std::pair<std::string, ClockFormat>, std::string> patterns_ KX_GUARDED_BY(mutex_);
};

}  // namespace kx
