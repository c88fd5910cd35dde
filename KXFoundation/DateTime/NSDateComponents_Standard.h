// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <KXFoundation/Platform/Foundation/NSDateComponents.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Two operations on components. No instances; any thread, each record on one at a time.
class KX_EXPORT NSDateComponents_Standard {
  public:
    NSDateComponents_Standard() = delete;

    /// Copies year, month, day, hour, minute and second, undefined ones too; the receiver's other fields
    /// stay. Of an absent record come zeros. Nothing without a receiver.
    static void updateWithDateComponents(NSDateComponents* receiver,
                                         const std::optional<NSDateComponents>& components) noexcept;

    /// Hour x 3600 + minute x 60 + second, an undefined one as 0; 0 for an absent record.
    [[nodiscard]] static double timeIntervalInDay(const std::optional<NSDateComponents>& components) noexcept;
};

}  // namespace kx
