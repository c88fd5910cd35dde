// SPDX-License-Identifier: MIT

#include <unicode/gregocal.h>
#include <unicode/simpletz.h>

#include <KXFoundation/Platform/Foundation/Modules/IcuFormatter.h>
#include <KXFoundation/Platform/Foundation/Modules/IcuText.h>

namespace kx {

namespace {

constexpr UDate kBeforeAllTime =
    -184'303'902'528'000'000.0;              // the first millisecond that ICU's calendars hold
constexpr UDate k1950 = -631'152'000'000.0;  // milliseconds from 1970

std::unique_ptr<const icu::TimeZone> knownZone(const char* name) {
    std::unique_ptr<const icu::TimeZone> zone(
        icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
    const bool isKnown = zone && *zone != icu::TimeZone::getUnknown();
    return isKnown ? std::move(zone) : nullptr;
}

bool hasOffset(const icu::TimeZone& zone, double utc, std::int32_t offset) {
    std::int32_t raw = 0, daylight = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone.getOffset(utc, false, raw, daylight, status);
    return U_SUCCESS(status) && raw + daylight == offset * 1000;
}

}  // namespace

void IcuFormatter::useOffset(std::int32_t wanted) {
    if (!isNamed && wanted == offset) return;
    icu->adoptTimeZone(new icu::SimpleTimeZone(wanted * 1000, icu::UnicodeString()));
    offset = wanted;
    isNamed = false;
}

/// ICU's rules may be older than the system's, which a name must not make the time follow.
void IcuFormatter::useZone(double utc, std::int32_t wanted, const char* zone) {
    if (zone != name) {
        useOffset(wanted);
        name = zone;
        known = name.empty() ? nullptr : knownZone(zone);
    }
    if (!known || !hasOffset(*known, utc, wanted)) return useOffset(wanted);
    if (!isNamed) icu->setTimeZone(*known);
    isNamed = true;
}

IcuFormatter* openFormatter(const char* pattern, std::int32_t size, const char* locale) {
    UErrorCode status = U_ZERO_ERROR;
    auto made = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString::fromUTF8({pattern, size}),
                                                        icu::Locale(locale), status);
    if (U_FAILURE(status)) return nullptr;
    made->setLenient(false);
    made->set2DigitYearStart(k1950, status);  // as DatePattern reads them, whatever today is
    std::unique_ptr<icu::Calendar> calendar(made->getCalendar()->clone());
    if (auto* gregorian = dynamic_cast<icu::GregorianCalendar*>(calendar.get())) {
        gregorian->setGregorianChange(kBeforeAllTime, status);
    }
    made->adoptCalendar(calendar.release());
    made->adoptTimeZone(icu::TimeZone::getGMT()->clone());
    return U_SUCCESS(status) ? new IcuFormatter{std::move(made)} : nullptr;
}

void closeFormatter(IcuFormatter* formatter) {
    delete formatter;
}

bool formatDate(IcuFormatter* formatter, double utc, std::int32_t offset, const char* zone,
                const IcuText* text) {
    formatter->useZone(utc, offset, zone);
    icu::UnicodeString written;
    UErrorCode status = U_ZERO_ERROR;
    formatter->icu->format(utc, written, nullptr, status);
    if (U_SUCCESS(status)) append(written, *text);
    return U_SUCCESS(status);
}

bool parseDate(IcuFormatter* formatter, const char* text, std::int32_t size, double* milliseconds) {
    formatter->useOffset(0);
    const auto given = icu::UnicodeString::fromUTF8({text, size});
    icu::ParsePosition position;
    *milliseconds = formatter->icu->parse(given, position);
    // Of numbers that touch ICU reports no error, but does not go on.
    return position.getErrorIndex() < 0 && position.getIndex() > 0 && position.getIndex() == given.length();
}

}  // namespace kx
