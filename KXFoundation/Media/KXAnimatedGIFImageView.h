// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include <KXFoundation/Media/KXGIFImageView.h>

namespace kx {

class AnimationPlayer;

/// Plays what its GIF file shows. Frames come at their times on the clock: a late one is left out, and
/// nothing drifts. A GIF that plays n times rests on its last frame. The view stands still, and costs
/// nothing, while it is hidden or in no window on the screen (a minimised one is not), and then goes on where
/// it stopped.
class KX_EXPORT KXAnimatedGIFImageView : public Subclass<KXAnimatedGIFImageView, KXGIFImageView> {
  public:
    [[nodiscard]] static std::shared_ptr<KXAnimatedGIFImageView> initWithGIFPath(
        std::optional<std::string_view> path);

    /// Whether it plays as soon as there is something to play and the view is seen; it does unless paused.
    [[nodiscard]] bool isPlaying() const noexcept { return playing_; }
    void play();
    void pause();

    /// 0 without an animation.
    [[nodiscard]] std::size_t frameCount() const noexcept;
    /// The frame of this moment.
    [[nodiscard]] std::size_t currentFrame() const;
    /// Goes to the beginning of a frame, playing or not; to the last one if there are fewer. Loops are
    /// counted anew.
    void seekToFrame(std::size_t frame);

    /// 1 unless set; 2 is twice as fast. Anything but a number from 0.01 to 100 is a caller error.
    [[nodiscard]] double speed() const noexcept { return speed_; }
    void setSpeed(double speed);

    /// Of the image that was rendered last, which sets it; a later change does not reach what is playing.
    [[nodiscard]] std::int64_t loopCount() const noexcept override { return loopCount_; }
    void setLoopCount(std::int64_t count) override { loopCount_ = count; }

    void renderImageViewWithImg(const std::shared_ptr<NSImage>& image) override;
    /// Takes the place of the animation.
    void setImage(std::shared_ptr<NSImage> image) override;
    void viewDidShowOrHide() override;

  protected:
    KXAnimatedGIFImageView() = default;

  private:
    void playOrStand();

    std::shared_ptr<AnimationPlayer> player_;
    std::size_t frameCount_ = 0;
    std::int64_t loopCount_ = 0;
    double speed_ = 1;
    bool playing_ = true;
};

}  // namespace kx
