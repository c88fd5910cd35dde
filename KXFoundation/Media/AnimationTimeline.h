// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Which frame of an animation belongs to which time. Arithmetic alone: however late it is asked, the answer
/// is that of the time, so nothing drifts. Any thread.
class KX_EXPORT AnimationTimeline {
  public:
    using Time = std::chrono::nanoseconds;

    /// How long each frame is shown, in seconds; what is no such length (not above 0, not a number, more than
    /// a day) counts as a tenth of a second. Plays `loopCount` times; 0 and below for ever.
    AnimationTimeline(std::span<const float> durations, std::int64_t loopCount);

    [[nodiscard]] std::size_t count() const noexcept { return ends_.size(); }

    struct Place {
        std::size_t frame = 0;
        std::optional<Time> left;  ///< until the next frame; none where it stays
        std::size_t next = 0;      ///< the frame after it, itself where it stays
    };
    /// After so much time of playing; before the start is the start. An empty one is always at frame 0.
    [[nodiscard]] Place at(Time played) const noexcept;

    /// When the frame begins in the first pass.
    [[nodiscard]] Time startOf(std::size_t frame) const noexcept;

  private:
    [[nodiscard]] Time pass() const noexcept { return ends_.back(); }

    std::vector<Time> ends_;  // of each frame, in the first pass
    std::int64_t loopCount_;
};

}  // namespace kx
