// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Page.h"

namespace gallery {

/// A mask over a part of the page and one over the whole window; their delegate counts the clicks.
class MaskPage final : public Page {
  public:
    MaskPage();
    ~MaskPage() override;
    void build(Column& column, Gallery& gallery) override;

  private:
    class Counter;
    const std::shared_ptr<Counter> counter_;
};

}  // namespace gallery
