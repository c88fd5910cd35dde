// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Page.h"

namespace gallery {

/// The feedback page, the application's versions, the look-up of its latest release in the store, and
/// addresses that the desktop opens.
class LinksPage final : public Page {
  public:
    LinksPage();
    ~LinksPage() override;
    void build(Column& column, Gallery& gallery) override;

  private:
    struct Lookup;
    void lookUp(Gallery& gallery);

    const std::shared_ptr<Lookup> lookup_;  // its answer may come when the page is gone
};

}  // namespace gallery
