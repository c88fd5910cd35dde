// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Foundation/NSDate.h>

#include "Page.h"

namespace gallery {

/// The month around a day that is chosen by clicking: every cell and number is an answer of the calendar.
class CalendarPage final : public Page {
  public:
    void build(Column& column, Gallery& gallery) override;

  private:
    void addMonth(Column& column, Gallery& gallery);
    void addAnswers(Column& column) const;

    std::optional<kx::NSDate> chosen_ = kx::NSDate::date();
};

}  // namespace gallery
