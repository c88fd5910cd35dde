// SPDX-License-Identifier: MIT

#include <cmath>

#include <KXFoundation/Platform/Foundation/NSDate.h>
#include <KXFoundation/Platform/Runtime/Clock.h>

namespace kx {

namespace {

using Ticks = std::chrono::system_clock::duration;
constexpr double kTicksPerSecond = static_cast<double>(Ticks::period::den) / Ticks::period::num;

}  // namespace

NSDate::NSDate(std::chrono::system_clock::time_point time) noexcept
    : NSDate(std::chrono::duration<double>(time.time_since_epoch()).count() - kTimeIntervalSince1970) {}

NSDate NSDate::date() {
    return NSDate(Clock::slot().current().wallTime());
}

std::optional<std::chrono::system_clock::time_point> NSDate::timePoint() const noexcept {
    const double ticks = std::round(timeIntervalSince1970() * kTicksPerSecond);
    if (!(std::abs(ticks) < static_cast<double>(Ticks::max().count()))) return std::nullopt;
    return std::chrono::system_clock::time_point(Ticks(static_cast<Ticks::rep>(ticks)));
}

std::optional<NSDate> NSDate::dateWithValue(const Value& value) noexcept {
    const auto seconds = value.asDate();
    return seconds ? std::optional(NSDate(*seconds)) : std::nullopt;
}

}  // namespace kx
