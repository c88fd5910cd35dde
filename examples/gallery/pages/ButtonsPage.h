// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// Buttons that answer clicks around them, with that area drawn, and confirm buttons.
class ButtonsPage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;

  private:
    int clicks_ = 0;
};

}  // namespace gallery
