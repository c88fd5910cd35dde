// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSDate.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Platform/Foundation/NSTimeZone.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

class LocaleDates;

/// Writes dates as text and reads them back, by a pattern of Unicode Technical Standard #35, in one locale
/// and time zone. Numbers and the AM/PM symbol cost tens of nanoseconds; names and the like are ICU's work
/// and cost some microseconds.
///
/// Any number of threads may write and read texts at a time; settings are changed by one alone.
class KX_EXPORT NSDateFormatter : public Subclass<NSDateFormatter, NSObject> {
  public:
    /// The locale's best pattern for the fields that a template ("jmm") names, in whatever order; "j" is the
    /// hour as the locale writes it, or as the user's setting has it where the locale is the current one.
    /// None for an absent or overlong template. The options must be 0. An absent locale is the current one.
    [[nodiscard]] static std::optional<std::string> dateFormatFromTemplate(
        std::optional<std::string_view> templateText, std::uint64_t options,
        const std::shared_ptr<NSLocale>& locale);

    NSDateFormatter();
    ~NSDateFormatter() override;

    /// With the current locale, the system's time zone and an empty pattern.
    bool init();

    /// None for a date that is absent or no number, and for a pattern that makes no sense.
    [[nodiscard]] virtual std::optional<std::string> stringFromDate(const std::optional<NSDate>& date) const;
    /// None unless the whole text follows the pattern and names a date that there is.
    [[nodiscard]] virtual std::optional<NSDate> dateFromString(std::optional<std::string_view> text) const;
    [[nodiscard]] virtual std::string AMSymbol() const;
    [[nodiscard]] virtual std::string PMSymbol() const;

    [[nodiscard]] const std::string& dateFormat() const noexcept;
    /// Absent stands for an empty pattern.
    virtual void setDateFormat(std::optional<std::string_view> pattern);
    /// Sets the pattern that dateFormatFromTemplate gives for the formatter's locale; nothing for an absent
    /// or overlong template. The last few are kept ready: going to and fro between them costs nothing.
    virtual void setLocalizedDateFormatFromTemplate(std::optional<std::string_view> templateText);

    [[nodiscard]] const std::shared_ptr<NSLocale>& locale() const noexcept { return locale_; }
    /// The pattern stays. Absent stands for the current locale.
    void setLocale(std::shared_ptr<NSLocale> locale);
    [[nodiscard]] const std::shared_ptr<NSTimeZone>& timeZone() const noexcept { return zone_; }
    /// Absent stands for the system's.
    void setTimeZone(std::shared_ptr<NSTimeZone> zone);

  private:
    struct Pattern;
    void use(std::string_view templateText, std::string pattern);

    std::shared_ptr<NSLocale> locale_;
    std::shared_ptr<NSTimeZone> zone_;
    std::shared_ptr<const LocaleDates> dates_;
    std::vector<std::unique_ptr<Pattern>> patterns_;  // the last few, in their order of coming
    const Pattern* pattern_ = nullptr;                // one of these
};

}  // namespace kx
