// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// Loading views of several sizes, and the other properties that an animation can lead.
class LoadingPage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;
};

}  // namespace gallery
