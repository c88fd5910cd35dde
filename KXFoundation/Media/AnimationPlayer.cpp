// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include <KXFoundation/Media/AnimationPlayer.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFFrameStream.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/NSStreamedImageRep.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>

namespace kx {

namespace {

std::shared_ptr<NSStreamedImageRep> streamedRep(const std::shared_ptr<NSImage>& image) {
    const bool isEmpty = !image || image->representations().empty();
    return isEmpty ? nullptr : objectCast<NSStreamedImageRep>(image->representations().front());
}

/// Of a list as a file gives it; one that was put together otherwise is drawn as any picture is.
std::shared_ptr<GIFFrameStream> streamOf(const ImageList& frames) {
    const auto first = streamedRep(frames->front());
    if (!first) return nullptr;
    for (std::size_t i = 0; i < frames->size(); ++i) {
        const auto rep = streamedRep((*frames)[i]);
        if (!rep || rep->index() != i) return nullptr;
    }
    return first->stream();
}

/// Frames that have no duration of their own share that of the whole.
std::vector<float> durationsOf(const ImageList& frames, float whole) {
    std::vector<float> durations;
    for (const auto& frame : *frames) durations.push_back(NSImage_LoopCount::duration(frame));
    const bool isOwn = std::ranges::any_of(durations, [](float duration) { return duration > 0; });
    if (!isOwn) std::ranges::fill(durations, whole / static_cast<float>(durations.size()));
    return durations;
}

}  // namespace

std::shared_ptr<AnimationPlayer> AnimationPlayer::make(ImageList frames, float duration,
                                                       std::int64_t loopCount, Show show) {
    return std::shared_ptr<AnimationPlayer>(
        new AnimationPlayer(std::move(frames), duration, loopCount, std::move(show)));
}

AnimationPlayer::AnimationPlayer(ImageList frames, float duration, std::int64_t loopCount, Show show)
    : frames_(std::move(frames)),
      timeline_(durationsOf(frames_, duration), loopCount),
      show_(std::move(show)),
      stream_(streamOf(frames_)) {}

// Time

AnimationTimeline::Time AnimationPlayer::played() const {
    if (!running_) return playedAtAnchor_;
    const auto passed = static_cast<double>((clock_->now() - anchor_).count());
    return playedAtAnchor_ + Time(std::llround(passed * speed_));
}

void AnimationPlayer::setPlayed(Time played) {
    playedAtAnchor_ = played;
    anchor_ = clock_->now();
}

void AnimationPlayer::start() {
    if (running_) return;
    setPlayed(playedAtAnchor_);
    running_ = true;
    turn();
}

void AnimationPlayer::stop() {
    setPlayed(played());
    running_ = false;
    ++timer_;
}

std::size_t AnimationPlayer::frame() const {
    return timeline_.at(played()).frame;
}

void AnimationPlayer::seek(std::size_t frame) {
    setPlayed(timeline_.startOf(std::min(frame, timeline_.count() - 1)));
    isStale_ = preparing_.has_value();
    turn();
}

void AnimationPlayer::setSpeed(double speed) {
    setPlayed(played());
    speed_ = speed;
    if (running_) turn();
}

// Turns

void AnimationPlayer::turn() {
    const auto held = shared_from_this();
    const AnimationTimeline::Place place = timeline_.at(played());
    if (running_ && place.left) setTimer(*place.left);
    showFrame(place.frame);
    if (running_ && shown_ == place.frame) prepare(place.next);
}

void AnimationPlayer::setTimer(Time left) {
    const Time wait(static_cast<std::int64_t>(std::ceil(static_cast<double>(left.count()) / speed_)));
    const auto action = [weak = weak_from_this(), number = ++timer_] {
        const auto player = weak.lock();
        if (player && player->timer_ == number) player->turn();
    };
    clock_->runAt(clock_->now() + wait, TimerThread::Main, action);
}

void AnimationPlayer::showFrame(std::size_t frame) {
    if (shown_ == frame) return;
    if (!stream_) return present(frame, (*frames_)[frame]);
    if (ready_ == frame) return present(frame, std::exchange(readyImage_, nullptr));
    prepare(frame);
}

void AnimationPlayer::present(std::size_t frame, const std::shared_ptr<NSImage>& image) {
    shown_ = frame;
    if (ready_ == frame) ready_.reset();
    show_(image);
}

// Streamed frames

void AnimationPlayer::prepare(std::size_t frame) {
    if (!stream_ || preparing_ || ready_ == frame || shown_ == frame) return;
    preparing_ = frame;
    ready_.reset();
    readyImage_ = nullptr;
    stream_->prepare(frame, [weak = weak_from_this(), frame](const GIFFrameStream::Bitmap& bitmap) {
        DispatchQueue::main().async([weak, frame, image = NSImage::initWithBitmap(bitmap)] {
            if (const auto player = weak.lock()) player->arrived(frame, image);
        });
    });
}

/// The frame after the present one waits for its time; a late one is the newest there is.
void AnimationPlayer::arrived(std::size_t frame, std::shared_ptr<NSImage> image) {
    const auto held = shared_from_this();
    preparing_.reset();
    const AnimationTimeline::Place place = timeline_.at(played());
    const bool isStale = std::exchange(isStale_, false);
    if (!image) return;  // no memory: the next turn tries again
    if (!isStale && frame != place.frame && frame == place.next) {
        ready_ = frame;
        readyImage_ = std::move(image);
    } else if (!isStale && (running_ || frame == place.frame)) {
        present(frame, image);
    }
    if (shown_ != place.frame) return prepare(place.frame);
    if (running_) prepare(place.next);
}

}  // namespace kx
