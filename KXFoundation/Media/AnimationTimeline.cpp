// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Media/AnimationTimeline.h>

namespace kx {

namespace {

constexpr float kLongest = 86'400, kUsual = 0.1F;

/// To the microsecond: a hundredth is none in single precision.
AnimationTimeline::Time lengthOf(float seconds) {
    const double usable = seconds > 0 && seconds <= kLongest ? seconds : kUsual;
    return std::chrono::microseconds(std::max(1LL, std::llround(usable * 1e6)));
}

}  // namespace

AnimationTimeline::AnimationTimeline(std::span<const float> durations, std::int64_t loopCount)
    : loopCount_(loopCount) {
    Time end{};
    for (const float seconds : durations) ends_.push_back(end += lengthOf(seconds));
}

AnimationTimeline::Place AnimationTimeline::at(Time played) const noexcept {
    if (ends_.empty()) return {};
    played = std::max(played, Time());
    const std::int64_t passes = played / pass();
    const std::size_t last = count() - 1;
    if (loopCount_ > 0 && passes >= loopCount_) return {last, std::nullopt, last};
    const Time inPass = played % pass();
    const auto end = std::ranges::upper_bound(ends_, inPass);
    const auto frame = static_cast<std::size_t>(end - ends_.begin());
    if (frame < last) return {frame, *end - inPass, frame + 1};
    const bool stays = last == 0 || (loopCount_ > 0 && passes + 1 == loopCount_);
    if (stays) return {last, std::nullopt, last};
    return {last, *end - inPass, 0};
}

AnimationTimeline::Time AnimationTimeline::startOf(std::size_t frame) const noexcept {
    return frame == 0 || ends_.empty() ? Time() : ends_[std::min(frame, count()) - 1];
}

}  // namespace kx
