// SPDX-License-Identifier: MIT

#include "pages/AnimationPage.h"

#include <chrono>
#include <cstdio>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Graphics/ImageSource.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

constexpr std::size_t kInRow = 3;
constexpr double kPictureHeight = 150;

constexpr struct {
    std::string_view file, textKey;
} kPictures[] = {
    {"spinner", "animation.spinner"}, {"ball", "animation.ball"},           {"plasma", "animation.plasma"},
    {"rings", "animation.rings"},     {"countdown", "animation.countdown"}, {"large", "animation.large"},
};

std::string memoryText() {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MiB", static_cast<double>(FrameMemory::inUse()) / (1 << 20));
    return text;
}

/// Once a second, as long as the line is there.
void showMemory(const std::weak_ptr<NSTextField>& line) {
    DispatchQueue::main().after(std::chrono::seconds(1), [line] {
        const auto field = line.lock();
        if (!field || !field->window()) return;
        field->setStringValue(memoryText());
        showMemory(line);
    });
}

}  // namespace

void AnimationPage::build(Column& column, Gallery& gallery) {
    const std::string held = memoryText();  // before this page's own pictures
    column.title(text("animation.title"));
    column.paragraph(text("animation.explanation"));
    column.space(8);
    if (views_.empty()) {
        for (const auto& picture : kPictures) {
            auto view = make<View>();
            view->setImageScaling(NSImageScaling::ProportionallyDown);
            view->setGIFPath(NSBundle::mainBundle()->pathForResource(picture.file, "gif"));
            views_.push_back(view);
        }
    }
    addPictures(column);
    column.space(8);
    addControls(column, gallery);
    const auto memory = column.pair(text("animation.memory"), held);
    if (playing_) showMemory(memory);
}

/// The views stay the same, so that the pictures play on while the language changes.
void AnimationPage::addPictures(Column& column) {
    const double width = (column.width() - 10 * (kInRow - 1)) / kInRow;
    for (std::size_t first = 0; first < views_.size(); first += kInRow) {
        std::vector<std::shared_ptr<NSView>> pictures, captions;
        for (std::size_t i = first; i < first + kInRow; ++i) {
            views_[i]->setFrame({0, 0, width, kPictureHeight});
            pictures.push_back(views_[i]);
            captions.push_back(label(text(kPictures[i].textKey), 12));
            captions.back()->setFrame({0, 0, width, 0});
        }
        column.row(pictures, kPictureHeight);
        column.row(captions, 18);
        column.space(6);
    }
}

void AnimationPage::addControls(Column& column, Gallery& gallery) {
    const auto playOrPause = [this, &gallery] {
        playing_ = !playing_;
        forEach(playing_ ? [](View& view) { view.play(); } : [](View& view) { view.pause(); });
        gallery.rebuild();
    };
    const auto step = [](View& view) {
        if (view.frameCount() > 0) view.seekToFrame((view.currentFrame() + 1) % view.frameCount());
    };
    const auto restart = [](View& view) { view.seekToFrame(0); };
    const auto speed = [&](const char* title, double factor) {
        auto button = titledButton(title, [=, this, &gallery] { setSpeed(factor, gallery); });
        button->setDefaultButton(speed_ == factor);
        return button;
    };
    column.row({pushButton(playing_ ? "animation.pause" : "animation.play", playOrPause),
                pushButton("animation.step", [=, this] { forEach(step); }),
                pushButton("animation.restart", [=, this] { forEach(restart); }), speed("½×", 0.5),
                speed("1×", 1), speed("2×", 2)});
}

void AnimationPage::forEach(void (*action)(View&)) {
    for (const auto& view : views_) action(*view);
}

void AnimationPage::setSpeed(double speed, Gallery& gallery) {
    speed_ = speed;
    for (const auto& view : views_) view->setSpeed(speed);
    gallery.rebuild();
}

}  // namespace gallery
