// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include <KXFoundation/Media/AnimationTimeline.h>
#include <KXFoundation/Media/NSImage_LoopCount.h>
#include <KXFoundation/Platform/Runtime/Clock.h>

/// Private to Media.
namespace kx {

class GIFFrameStream;
class NSBitmapImageRep;

/// Shows the frames of an animation at their times on the clock. Frames that are streamed are decoded ahead
/// in the background: one that is not there in time is shown when it comes if nothing later is due by then,
/// those between are left out, and the times of the others stay. Makes no turn while it stands or nothing
/// follows. Main thread.
class AnimationPlayer : public std::enable_shared_from_this<AnimationPlayer> {
  public:
    using Show = std::function<void(const std::shared_ptr<NSImage>&)>;

    /// `show` is called with every frame in its turn. The duration, in seconds, is that of one pass, for
    /// frames that have none of their own.
    static std::shared_ptr<AnimationPlayer> make(ImageList frames, float duration, std::int64_t loopCount,
                                                 Show show);

    /// Shows the frame of its place and goes on from there.
    void start();
    /// Keeps its place.
    void stop();

    /// The frame of this moment.
    [[nodiscard]] std::size_t frame() const;
    /// Goes to the frame's beginning, in the first of its passes; the last frame if there are fewer.
    void seek(std::size_t frame);

    [[nodiscard]] double speed() const noexcept { return speed_; }
    void setSpeed(double speed);

  private:
    using Time = AnimationTimeline::Time;

    AnimationPlayer(ImageList frames, float duration, std::int64_t loopCount, Show show);

    [[nodiscard]] Time played() const;
    void setPlayed(Time played);
    void turn();
    void setTimer(Time left);
    void showFrame(std::size_t frame);
    void prepare(std::size_t frame);
    void arrived(std::size_t frame, std::shared_ptr<NSImage> image);
    void present(std::size_t frame, const std::shared_ptr<NSImage>& image);

    const ImageList frames_;
    const AnimationTimeline timeline_;
    const Show show_;
    const std::shared_ptr<Clock> clock_ = Clock::slot().shared();
    const std::shared_ptr<GIFFrameStream> stream_;  // none where every frame is there

    bool running_ = false;
    double speed_ = 1;
    Time playedAtAnchor_{}, anchor_{};
    std::uint64_t timer_ = 0;  // the one that counts; earlier ones cannot be taken back

    std::optional<std::size_t> shown_;
    std::optional<std::size_t> preparing_;
    bool isStale_ = false;  // what is being prepared was wanted before a jump
    std::optional<std::size_t> ready_;
    std::shared_ptr<NSImage> readyImage_;
};

}  // namespace kx
