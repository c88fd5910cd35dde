// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// Picks the application's language and shows what follows from it: controls bound to keys, a missing key,
/// the English fallback, a layout that is mirrored, and controls that follow a switch where they stand.
class LanguagePage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;
};

}  // namespace gallery
