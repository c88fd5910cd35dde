// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// What the library tells of the screen and of the windows on it.
class ScreenPage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;
};

}  // namespace gallery
