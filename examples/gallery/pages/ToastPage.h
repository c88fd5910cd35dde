// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// Toasts with and without a picture, for a short and the usual time, one that leaves when it is clicked, and
/// the notification that clears them all.
class ToastPage final : public Page {
  public:
    ~ToastPage() override;
    void build(Column& column, Gallery& gallery) override;
    void demonstrate(Gallery& gallery) override;
};

}  // namespace gallery
