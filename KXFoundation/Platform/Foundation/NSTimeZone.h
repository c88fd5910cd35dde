// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSDate.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

class ZoneRules;

/// The port of the user's time zone. The adapter reads TZ once (an empty one counts as none, as every
/// variable does), else where /etc/localtime leads, whenever it is asked; a test injects a name.
class KX_EXPORT TimeZoneSettings {
  public:
    virtual ~TimeZoneSettings() = default;

    /// "Europe/Berlin", or the absolute path of a zone file.
    [[nodiscard]] virtual std::string systemTimeZoneName() const = 0;

    static PortSlot<TimeZoneSettings>& slot();
    static std::shared_ptr<TimeZoneSettings> makeDefault();
};

/// A time zone: local time's distance from UTC at every instant, by the system's zone files. Immutable; any
/// thread.
class KX_EXPORT NSTimeZone : public Subclass<NSTimeZone, NSObject> {
  public:
    /// The zone of an IANA name ("Asia/Almaty"); none if the system has no such zone. "UTC" and "GMT" need no
    /// file. The first use of a zone takes about a millisecond.
    [[nodiscard]] static std::shared_ptr<NSTimeZone> timeZoneWithName(std::optional<std::string_view> name);
    /// A zone always that far east of UTC, "GMT+02:30"; none beyond 18 hours.
    [[nodiscard]] static std::shared_ptr<NSTimeZone> timeZoneForSecondsFromGMT(std::int64_t seconds);
    /// The user's zone now; UTC, and one log line, where its rules cannot be read.
    [[nodiscard]] static std::shared_ptr<NSTimeZone> systemTimeZone();

    bool init(std::string_view name, std::shared_ptr<const ZoneRules> rules);

    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    /// Seconds east of UTC at the date; 0 if it is absent or lies beyond what a calendar holds.
    [[nodiscard]] std::int64_t secondsFromGMTForDate(const std::optional<NSDate>& date) const noexcept;

    [[nodiscard]] std::string description() const override { return name_; }
    [[nodiscard]] bool isEqual(const NSObject& other) const override;

    /// For Platform's own date classes.
    [[nodiscard]] const ZoneRules& rules() const noexcept { return *rules_; }

  private:
    std::string name_;
    std::shared_ptr<const ZoneRules> rules_;
};

}  // namespace kx
