#include <unicode/gregocal.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include <KXFoundation/Platform/Foundation/IcuDateFormat.h>

namespace kx {

namespace {

constexpr double kBeforeAllTime =
    -184'303'902'528'000'000.0;  // the first millisecond that ICU's calendars hold

bool hasZoneField(std::string_view pattern) noexcept {
    bool isQuoted = false;
    for (const char c : pattern) {
        if (c == '\'') isQuoted = !isQuoted;
        if (!isQuoted && std::string_view("zZOvVXx").find(c) != std::string_view::npos) return true;
    }
    return false;
}

icu::UnicodeString wide(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

}  // namespace

constexpr UDate k1950 = -631'152'000'000.0;  // milliseconds from 1970

struct IcuDateFormat::Format {
    /// None if the locale has no data or the pattern makes no sense.
    std::unique_ptr<icu::SimpleDateFormat> icu;
    std::int32_t offset = 0;  // of its zone

    void useOffset(std::int32_t wanted) {
        if (wanted == offset) return;
        icu->adoptTimeZone(new icu::SimpleTimeZone(wanted * 1000, icu::UnicodeString()));
        offset = wanted;
    }
};

IcuDateFormat::IcuDateFormat(std::string_view pattern, const std::string& localeIdentifier)
    : format_(std::make_unique<Format>()), namesZone_(hasZoneField(pattern)) {
    UErrorCode status = U_ZERO_ERROR;
    auto made =
        std::make_unique<icu::SimpleDateFormat>(wide(pattern), icu::Locale(localeIdentifier.c_str()), status);
    if (U_FAILURE(status)) return;
    made->setLenient(false);
    made->set2DigitYearStart(k1950, status);  // as DatePattern reads them, whatever today is
    std::unique_ptr<icu::Calendar> calendar(made->getCalendar()->clone());
    if (auto* gregorian = dynamic_cast<icu::GregorianCalendar*>(calendar.get())) {
        gregorian->setGregorianChange(kBeforeAllTime, status);
    }
    made->adoptCalendar(calendar.release());
    made->adoptTimeZone(icu::TimeZone::getGMT()->clone());
    if (U_SUCCESS(status)) format_->icu = std::move(made);
}

IcuDateFormat::~IcuDateFormat() = default;

std::optional<std::string> IcuDateFormat::format(double utc, std::int32_t offset) const {
    const MutexLock lock(mutex_);
    if (!format_->icu) return std::nullopt;
    format_->useOffset(offset);
    icu::UnicodeString text;
    UErrorCode status = U_ZERO_ERROR;
    format_->icu->format(utc * 1000, text, nullptr, status);
    std::string bytes;
    return U_SUCCESS(status) ? std::optional(text.toUTF8String(bytes)) : std::nullopt;
}

std::optional<IcuDateFormat::Parsed> IcuDateFormat::parse(std::string_view text) const {
    const MutexLock lock(mutex_);
    if (!format_->icu) return std::nullopt;
    format_->useOffset(0);
    const icu::UnicodeString given = wide(text);
    icu::ParsePosition position;
    const UDate milliseconds = format_->icu->parse(given, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != given.length()) return std::nullopt;
    return Parsed{milliseconds / 1000, namesZone_};
}

}  // namespace kx
