// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "Page.h"

namespace kx {
class KXCache;
class KXCacheLoader;
}  // namespace kx

namespace gallery {

/// A cache of both stores with small limits: what leaves memory is answered from disk, what is older than the
/// age limit by neither. And one load for many callers at a time, whose value is answered while it is
/// renewed.
class CachePage final : public Page {
  public:
    CachePage();
    void build(Column& column, Gallery& gallery) override;
    void demonstrate(Gallery& gallery) override { ask(gallery); }

  private:
    void fill();
    void read();
    void toggleAge();
    [[nodiscard]] kx::KXCacheLoader loader(Gallery& gallery) const;
    void ask(Gallery& gallery);
    void addLoading(Column& column, Gallery& gallery);

    std::shared_ptr<kx::KXCache> cache_;
    std::shared_ptr<std::atomic<int>> asked_ = std::make_shared<std::atomic<int>>(0);
    std::shared_ptr<const std::vector<std::string>> answers_;  // to the last who asked
};

}  // namespace gallery
