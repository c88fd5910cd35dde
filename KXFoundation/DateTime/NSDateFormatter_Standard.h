// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Foundation/NSDateFormatter.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A formatter that depends on nobody's settings. No instances; any thread.
class KX_EXPORT NSDateFormatter_Standard {
  public:
    NSDateFormatter_Standard() = delete;

    /// The shared formatter for "yyyy-MM-dd HH:mm:ss" in UTC and US English: what it writes of the years 1 to
    /// 999,999 it reads back as the same second. Who changes it changes it for all.
    [[nodiscard]] static std::shared_ptr<NSDateFormatter> standardFormatter();
};

}  // namespace kx
