// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>

#include "Page.h"

namespace gallery {

/// The times of one day as the user writes them, and with and without AM/PM in eight locales.
class TimePage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;

  private:
    kx::NotificationToken updates_;
};

}  // namespace gallery
