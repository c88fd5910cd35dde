// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <compare>
#include <optional>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// A point in time, in seconds since 2001-01-01T00:00:00Z. An immutable value of 8 bytes; any thread. One
/// that is no number of seconds (NaN) is before, after and equal to nothing; calendars and formatters answer
/// none for it.
class KX_EXPORT NSDate {
  public:
    /// Seconds from 1970-01-01 to 2001-01-01, both at 00:00 UTC.
    static constexpr double kTimeIntervalSince1970 = 978'307'200;

    /// Now, by the system's clock (Clock::wallTime).
    [[nodiscard]] static NSDate date();
    [[nodiscard]] static constexpr NSDate dateWithTimeIntervalSince1970(double seconds) noexcept {
        return NSDate(seconds - kTimeIntervalSince1970);
    }
    [[nodiscard]] static constexpr NSDate dateWithTimeIntervalSinceReferenceDate(double seconds) noexcept {
        return NSDate(seconds);
    }
    explicit NSDate(std::chrono::system_clock::time_point time) noexcept;

    [[nodiscard]] constexpr double timeIntervalSince1970() const noexcept {
        return seconds_ + kTimeIntervalSince1970;
    }
    [[nodiscard]] constexpr double timeIntervalSinceReferenceDate() const noexcept { return seconds_; }
    /// Rounded to the system clock's ticks; absent beyond what it can hold (years 1678 to 2262).
    [[nodiscard]] std::optional<std::chrono::system_clock::time_point> timePoint() const noexcept;

    /// Seconds from the other date to this one.
    [[nodiscard]] constexpr double timeIntervalSinceDate(NSDate other) const noexcept {
        return seconds_ - other.seconds_;
    }
    [[nodiscard]] constexpr NSDate dateByAddingTimeInterval(double seconds) const noexcept {
        return NSDate(seconds_ + seconds);
    }
    /// This date where both are equal.
    [[nodiscard]] constexpr NSDate laterDate(NSDate other) const noexcept {
        return other.seconds_ > seconds_ ? other : *this;
    }
    [[nodiscard]] constexpr NSDate earlierDate(NSDate other) const noexcept {
        return other.seconds_ < seconds_ ? other : *this;
    }
    constexpr auto operator<=>(const NSDate&) const noexcept = default;

    /// As defaults, property lists and archives hold it.
    [[nodiscard]] Value value() const noexcept { return Value::date(seconds_); }
    /// The date in a Value; absent if it holds another type.
    [[nodiscard]] static std::optional<NSDate> dateWithValue(const Value& value) noexcept;

  private:
    constexpr explicit NSDate(double seconds) noexcept : seconds_(seconds) {}

    double seconds_;
};

}  // namespace kx
