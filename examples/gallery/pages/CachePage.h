// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Page.h"

namespace kx {
class KXCache;
}

namespace gallery {

/// A cache of both stores with small limits: what leaves memory is answered from disk, what is older than the
/// age limit by neither.
class CachePage final : public Page {
  public:
    CachePage();
    void build(Column& column, Gallery& gallery) override;

  private:
    void fill();
    void read();
    void toggleAge();

    std::shared_ptr<kx::KXCache> cache_;
};

}  // namespace gallery
