// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

#include <KXFoundation/Platform/Foundation/ClockFormatSetting.h>

namespace kx::testing {

/// A 12/24-hour setting that the test gives and may change at any time.
class KX_EXPORT InjectedClockFormat final : public ClockFormatSetting {
  public:
    explicit InjectedClockFormat(ClockFormat format = ClockFormat::Unset) : format_(format) {}

    void set(ClockFormat format) noexcept { format_ = format; }
    [[nodiscard]] ClockFormat clockFormat() const noexcept override { return format_; }

  private:
    std::atomic<ClockFormat> format_;
};

}  // namespace kx::testing
