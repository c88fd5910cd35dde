// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// A value kept in the keychain over the runs of the gallery, and where this machine keeps it.
class KeychainPage final : public Page {
  public:
    /// Saves once: showing the page counts.
    KeychainPage();
    void build(Column& column, Gallery& gallery) override;
};

}  // namespace gallery
