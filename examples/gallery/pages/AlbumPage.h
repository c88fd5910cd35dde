// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Page.h"

namespace gallery {

/// Two pictures and a video of the bundle, exported to the application's album in the photo library, and what
/// is in that album.
class AlbumPage final : public Page {
  public:
    AlbumPage();
    ~AlbumPage() override;
    void build(Column& column, Gallery& gallery) override;
    void demonstrate(Gallery& gallery) override;

  private:
    struct State;
    /// Shared with what runs in the background; lives as long as the page.
    const std::shared_ptr<State> state_;
};

}  // namespace gallery
