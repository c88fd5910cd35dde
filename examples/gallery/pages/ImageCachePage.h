// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Page.h"

namespace gallery {

/// Three pictures in an image cache, one stored in memory, one on disk, one in both, and where each is found
/// when memory, disk or both are asked.
class ImageCachePage final : public Page {
  public:
    ImageCachePage();
    ~ImageCachePage() override;
    void build(Column& column, Gallery& gallery) override;
    void demonstrate(Gallery& gallery) override;

  private:
    struct State;
    /// Shared with the answers that are awaited; lives as long as the page.
    const std::shared_ptr<State> state_;
};

}  // namespace gallery
