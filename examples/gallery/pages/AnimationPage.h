// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include <KXFoundation/Media/KXAnimatedGIFImageView.h>

#include "Page.h"

namespace gallery {

/// Plays six GIFs of different kinds, with buttons that pause, step, restart and change the speed of all of
/// them, and shows what their frames hold in memory.
class AnimationPage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;

  private:
    using View = kx::KXAnimatedGIFImageView;

    void addPictures(Column& column);
    void addControls(Column& column, Gallery& gallery);
    void forEach(void (*action)(View&));
    void setSpeed(double speed, Gallery& gallery);

    std::vector<std::shared_ptr<View>> views_;
    bool playing_ = true;
    double speed_ = 1;
};

}  // namespace gallery
