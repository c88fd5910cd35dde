// SPDX-License-Identifier: MIT

#include "pages/TimePage.h"

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/DateTime/KXDateUtils.h>
#include <KXFoundation/DateTime/NSCalendar_CalendricalCalculations.h>
#include <KXFoundation/DateTime/NSDateComponents_Standard.h>

#include "Gallery.h"

namespace gallery {

using namespace kx;

namespace {

constexpr const char* kLocales[] = {"ar_EG", "de_DE", "en_US", "es_MX", "fr_CA", "ja_JP", "ko_KR", "zh_TW"};
constexpr std::int64_t kMinutes[] = {0, 6 * 60 + 30, 12 * 60, 18 * 60 + 5, 24 * 60 - 1};

/// The user's time of day.
std::string now(const KXDateUtils& dates) {
    const auto fields = NSCalendar_CalendricalCalculations::componentsFromDate(NSDate::date());
    const auto seconds = static_cast<std::int64_t>(NSDateComponents_Standard::timeIntervalInDay(fields));
    return dates.convertSecondsToTimeString(seconds).value_or("");
}

/// Times in another locale than the user's: with a formatter of one's own.
std::shared_ptr<KXDateUtils> datesIn(std::string_view locale) {
    auto formatter = make<NSDateFormatter>();
    formatter->setLocale(NSLocale::localeWithLocaleIdentifier(locale));
    formatter->setTimeZone(NSTimeZone::timeZoneForSecondsFromGMT(0));
    auto dates = make<KXDateUtils>();
    dates->setSingleDateTimeFormatter(formatter);
    return dates;
}

void addDay(Column& column, bool hasAMPM) {
    std::vector<std::shared_ptr<NSView>> cells;
    for (const char* locale : kLocales) {
        cells.push_back(label(locale, 13, true));
        const auto dates = datesIn(locale);
        for (const std::int64_t minutes : kMinutes) {
            auto time = label(dates->convertMinutesToTimeString(minutes, hasAMPM, false).value_or(""));
            time->setAlignment(NSTextAlignment::Center);  // whichever way the locale writes
            cells.push_back(time);
        }
    }
    column.grid(cells, 1 + std::size(kMinutes), 20, 4);
}

}  // namespace

void TimePage::build(Column& column, Gallery& gallery) {
    // The application became active: the user may have changed the setting meanwhile.
    updates_ = NSNotificationCenter::defaultCenter().addObserverForName(
        KXDateUtilsUpdateTimeNotification, nullptr, [&gallery](const NSNotification&) { gallery.rebuild(); });
    const auto dates = KXDateUtils::sharedInstance();
    column.title(text("time.title"));
    column.paragraph(text("time.explanation"));
    column.space(12);
    column.pair(text("application.locale"), KXAppUtils::currentLocale());
    column.pair(text("time.template"), dates->getTimeFormat());
    column.pair(text("time.now"), now(*dates));
    column.caption(text("time.hours24"));
    addDay(column, false);
    column.caption(text("time.hours12"));
    addDay(column, true);
}

}  // namespace gallery
