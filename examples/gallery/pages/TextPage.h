// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// A line of several fonts, drawn and as an outline; texts in boxes of the sizes that were measured for them;
/// a line that runs both ways.
class TextPage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;
};

}  // namespace gallery
