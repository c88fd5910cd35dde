// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// Colour codes, and the colours that they gave.
class ColoursPage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;
};

}  // namespace gallery
