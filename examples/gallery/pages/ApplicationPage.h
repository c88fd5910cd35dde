// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// Who the application is, the user's locale and cloud locale, and what each selection key of the cloud
/// gives.
class ApplicationPage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;
};

}  // namespace gallery
