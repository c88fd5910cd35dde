// SPDX-License-Identifier: MIT
#pragma once

#include "Page.h"

namespace gallery {

/// Tokens whose blocks run once in the life of the process, however often the page is shown.
class OncePage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;
};

}  // namespace gallery
