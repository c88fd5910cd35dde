// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <KXFoundation/Core/KXList.h>

#include "Page.h"

namespace gallery {

/// A locked list that two threads change while the main thread goes through it again and again.
class ObjectsPage final : public Page {
  public:
    ObjectsPage();
    void build(Column& column, Gallery& gallery) override;

  private:
    void changeFromTwoThreads();
    void add();
    void remove() {
        if (!list_->isEmpty()) list_->removeLastObject();
    }
    void clear() { list_->removeAllObjects(); }

    const std::shared_ptr<kx::KXList> list_ = kx::KXList::safeList();
    std::uint64_t changesByA_ = 0;
    std::uint64_t changesByB_ = 0;
};

}  // namespace gallery
