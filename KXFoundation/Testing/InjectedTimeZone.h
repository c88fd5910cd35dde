// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSTimeZone.h>

namespace kx::testing {

/// A system that stands in the time zone the test names.
class KX_EXPORT InjectedTimeZone final : public TimeZoneSettings {
  public:
    explicit InjectedTimeZone(std::string name) : name_(std::move(name)) {}

    [[nodiscard]] std::string systemTimeZoneName() const override { return name_; }

  private:
    std::string name_;
};

}  // namespace kx::testing
