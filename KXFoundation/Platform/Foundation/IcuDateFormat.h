// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

struct IcuFormatter;

/// Date patterns through ICU, for what DatePattern leaves to it: names, other calendars, fractions. ICU's own
/// zone rules decide nothing (they may be older than the system's): it gets an offset, or local time as if it
/// were UTC. Any thread, one at a time. Private to Foundation.
class IcuDateFormat {
  public:
    IcuDateFormat(std::string_view pattern, const std::string& localeIdentifier);

    /// The text for seconds from 1970 in UTC, shown that many seconds east of it, which is what the zone of
    /// that name has then. Absent if the pattern is none or the module for ICU is missing.
    [[nodiscard]] std::optional<std::string> format(double utc, std::int32_t offset,
                                                    const std::string& zone) const;

    struct Parsed {
        double seconds;  ///< from 1970, in UTC if the text names its zone, else local
        bool namesZone;
    };
    [[nodiscard]] std::optional<Parsed> parse(std::string_view text) const;

  private:
    struct Closer {
        void operator()(IcuFormatter* formatter) const;
    };

    mutable Mutex mutex_;
    /// None if the module for ICU is missing, the locale has no data or the pattern makes no sense.
    std::unique_ptr<IcuFormatter, Closer> formatter_ KX_GUARDED_BY(mutex_);
    bool namesZone_;
};

}  // namespace kx
