// SPDX-License-Identifier: MIT

#include <string>
#include <utility>

#include <KXFoundation/Media/AnimationPlayer.h>
#include <KXFoundation/Media/KXAnimatedGIFImageView.h>
#include <KXFoundation/Media/NSImage_LoopCount.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>

namespace kx {

std::shared_ptr<KXAnimatedGIFImageView> KXAnimatedGIFImageView::initWithGIFPath(
    std::optional<std::string_view> path) {
    return make<KXAnimatedGIFImageView>(path);
}

void KXAnimatedGIFImageView::renderImageViewWithImg(const std::shared_ptr<NSImage>& image) {
    Super::renderImageViewWithImg(image);
    const ImageList frames = NSImage_LoopCount::images(image);
    if (!frames || frames->empty()) return;
    if (player_) player_->stop();
    frameCount_ = frames->size();
    // Frames are shown past the view's own setImage(), which would end the animation.
    player_ = AnimationPlayer::make(
        frames, NSImage_LoopCount::duration(image), loopCount_,
        [this](const std::shared_ptr<NSImage>& frame) { NSImageView::setImage(frame); });
    player_->setSpeed(speed_);
    player_->seek(0);
    playOrStand();
}

void KXAnimatedGIFImageView::setImage(std::shared_ptr<NSImage> image) {
    if (!allowsChange()) return;
    if (player_) player_->stop();
    player_ = nullptr;
    frameCount_ = 0;
    loopCount_ = 0;
    Super::setImage(std::move(image));
}

void KXAnimatedGIFImageView::viewDidShowOrHide() {
    playOrStand();
}

void KXAnimatedGIFImageView::play() {
    playing_ = true;
    playOrStand();
}

void KXAnimatedGIFImageView::pause() {
    playing_ = false;
    playOrStand();
}

void KXAnimatedGIFImageView::playOrStand() {
    if (!player_) return;
    if (playing_ && isShown())
        player_->start();
    else
        player_->stop();
}

std::size_t KXAnimatedGIFImageView::frameCount() const noexcept {
    return frameCount_;
}

std::size_t KXAnimatedGIFImageView::currentFrame() const {
    return player_ ? player_->frame() : 0;
}

void KXAnimatedGIFImageView::seekToFrame(std::size_t frame) {
    if (player_) player_->seek(frame);
}

void KXAnimatedGIFImageView::setSpeed(double speed) {
    if (!(speed >= 0.01 && speed <= 100))
        return callerError(className() + ": a speed of " + std::to_string(speed));
    speed_ = speed;
    if (player_) player_->setSpeed(speed);
}

}  // namespace kx
