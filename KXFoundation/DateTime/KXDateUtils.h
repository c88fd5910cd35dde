// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSDateFormatter.h>
#include <KXFoundation/Platform/Foundation/NSNotificationName.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// Posted on the main thread, without sender or payload, one second after each activation of the application:
/// texts with times may have to be written anew.
inline constinit const NSNotificationName KXDateUtilsUpdateTimeNotification{
    "KXDateUtilsUpdateTimeNotification"};

/// Times of day as the user writes them: 14:05, 02:05 PM or 下午02:05, by the user's locale and choice of 12
/// or 24 hours (the desktop's setting where it has one). The language chosen inside the application plays no
/// part.
///
/// Any thread. After the first in its form a conversion takes no lock until somebody asks for the formatter
/// or replaces it; from then on those on one object take turns, and a formatter must not call back into its
/// object.
class KX_EXPORT KXDateUtils : public Subclass<KXDateUtils, NSObject> {
  public:
    /// The process's own one, made at first use.
    [[nodiscard]] static std::shared_ptr<KXDateUtils> sharedInstance();

    KXDateUtils();
    ~KXDateUtils() override;

    /// Another one, with an observer of its own. Its formatter keeps the locale of this moment.
    bool init();

    /// Whether the user's times have an AM/PM marker. A changed setting is seen at the next call; while
    /// nothing changes a call costs a few atomic loads.
    [[nodiscard]] static bool hasAMPM();
    /// Whether that marker stands before the hour.
    [[nodiscard]] bool isAMPMFirst() const;
    /// The template of the user's times: "HH:mm", "ahh:mm" or "hh:mma". The locale decides where the marker
    /// of the text stands.
    [[nodiscard]] std::string getTimeFormat() const;

    // The time of day, counted from midnight and starting over after a day; -1 minute is 23:59. None without
    // a formatter. Exact for up to 2^52 seconds before and after; above, seconds are rounded as a double is,
    // and beyond 4e18 there is no text. The seconds of a count of minutes wrap around in 64 bits. Allocates
    // nothing but a text of more than 15 bytes.
    [[nodiscard]] std::optional<std::string> convertSecondsToTimeString(std::int64_t seconds) const;
    [[nodiscard]] std::optional<std::string> convertMinutesToTimeString(std::int64_t minutes) const;
    /// In the form that the flags ask for, whatever the user's is; without AM/PM the last one says nothing.
    [[nodiscard]] std::optional<std::string> convertMinutesToTimeString(std::int64_t minutes, bool hasAMPM,
                                                                        bool isAMPMFirst) const;

    // The formatter's symbols; none without a formatter.
    [[nodiscard]] std::optional<std::string> AMSymbol() const;
    [[nodiscard]] std::optional<std::string> PMSymbol() const;

    /// Called at each activation of the application.
    void appWillEnterForeground();

    /// In GMT. Conversions and activations change its pattern. Whoever asks may change it, so conversions go
    /// through it from then on, which takes them some three times as long.
    [[nodiscard]] std::shared_ptr<NSDateFormatter> singleDateTimeFormatter() const;
    void setSingleDateTimeFormatter(std::shared_ptr<NSDateFormatter> formatter);

  private:
    enum class Form : std::uint8_t;
    struct OwnTexts;

    [[nodiscard]] static Form formFor(bool hasAMPM, bool isAMPMFirst) noexcept;
    [[nodiscard]] static Form userForm();
    [[nodiscard]] static const std::optional<std::string_view>& templateOf(Form form) noexcept;
    [[nodiscard]] std::optional<std::string> convert(std::int64_t seconds, Form form) const;
    [[nodiscard]] std::optional<std::string> convertByFormatter(std::int64_t seconds, Form form) const;
    void usePattern(Form form) const KX_REQUIRES(mutex_);
    void endOwnTexts() const KX_REQUIRES(mutex_);

    mutable Mutex mutex_;
    std::shared_ptr<NSDateFormatter> formatter_ KX_GUARDED_BY(mutex_);
    const std::unique_ptr<OwnTexts> own_;
};

}  // namespace kx
