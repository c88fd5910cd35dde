// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

namespace kx {

class CALayer;

/// Asks for an animated layer's next frame a sixtieth of a second after one was drawn. What is not drawn,
/// because it is hidden or has left the screen, asks for none, and costs nothing until it is drawn again.
/// Main thread. Private to Views.
class FrameTimer {
  public:
    static void didDraw(const std::shared_ptr<CALayer>& layer);

  private:
    struct State {
        std::vector<std::weak_ptr<CALayer>> layers;
        bool isDue = false;
    };
    static void showNextFrames(State& state);
};

}  // namespace kx
