// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// Picks the application's language and shows what follows from it: controls bound to keys, a missing key,
/// the English fallback, and a layout that is mirrored.
class LanguagePage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;
};

}  // namespace gallery
