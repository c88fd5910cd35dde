#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

/// Date patterns through ICU, for what DatePattern leaves to it: names, other calendars, fractions. ICU's own
/// zone rules are never asked (they may be older than the system's): it gets an offset, or local time as if
/// it were UTC. Any thread, one at a time. Private to Foundation.
class IcuDateFormat {
  public:
    IcuDateFormat(std::string_view pattern, const std::string& localeIdentifier);
    ~IcuDateFormat();

    /// The text for seconds from 1970 in UTC, shown that many seconds east of it. Absent if the pattern is
    /// none.
    [[nodiscard]] std::optional<std::string> format(double utc, std::int32_t offset) const;

    struct Parsed {
        double seconds;  ///< from 1970, in UTC if the text names its zone, else local
        bool namesZone;
    };
    [[nodiscard]] std::optional<Parsed> parse(std::string_view text) const;

  private:
    struct Format;

    mutable Mutex mutex_;
    std::unique_ptr<Format> format_ KX_GUARDED_BY(mutex_);
    bool namesZone_;
};

}  // namespace kx
