#include <unicode/calendar.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/numsys.h>

#include <KXFoundation/Platform/Foundation/LocaleDates.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

constexpr std::size_t kMostLocales = 64;
constexpr std::size_t kMostPatterns = 64;
constexpr std::size_t kLongestIdentifier = 156;  // ULOC_FULLNAME_CAPACITY less its end

struct KnownLocales {
    Mutex mutex;
    std::map<std::string, std::shared_ptr<const LocaleDates>> dates KX_GUARDED_BY(mutex);
};

constinit ProcessState<KnownLocales> knownLocales;

icu::Locale localeOf(const std::string& identifier) {
    return identifier.size() <= kLongestIdentifier ? icu::Locale(identifier.c_str()) : icu::Locale::getRoot();
}

std::string utf8(const icu::UnicodeString& text) {
    std::string bytes;
    return text.toUTF8String(bytes);
}

std::array<std::string, 10> digitsOf(const icu::Locale& locale) {
    std::array<std::string, 10> digits;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberingSystem> system(icu::NumberingSystem::createInstance(locale, status));
    if (U_FAILURE(status) || system->isAlgorithmic() || system->getRadix() != 10) return digits;
    const icu::UnicodeString all = system->getDescription();
    for (std::int32_t i = 0; i < 10; ++i) {
        digits[static_cast<std::size_t>(i)] = utf8(icu::UnicodeString(all.char32At(all.moveIndex32(0, i))));
    }
    return digits;
}

}  // namespace

std::shared_ptr<const LocaleDates> LocaleDates::of(const std::string& identifier) {
    KnownLocales& known = knownLocales.get();
    const MutexLock lock(known.mutex);
    if (const auto found = known.dates.find(identifier); found != known.dates.end()) return found->second;
    if (known.dates.size() >= kMostLocales) known.dates.clear();
    return known.dates.emplace(identifier, std::make_shared<LocaleDates>(identifier)).first->second;
}

LocaleDates::LocaleDates(const std::string& identifier) : identifier_(identifier) {
    const icu::Locale locale = localeOf(identifier);
    digits_ = digitsOf(locale);
    UErrorCode status = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(locale, status);
    std::int32_t count = 0;
    const icu::UnicodeString* const halves = symbols.getAmPmStrings(count);
    if (U_SUCCESS(status) && count == 2) {
        am_ = utf8(halves[0]);
        pm_ = utf8(halves[1]);
    }
    status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(locale, status));
    if (U_FAILURE(status)) return;
    isGregorian_ = std::string_view(calendar->getType()) == "gregorian";
    const auto first = calendar->getFirstDayOfWeek(status);
    if (U_SUCCESS(status)) firstWeekday_ = first;
}

std::string LocaleDates::pattern(std::string_view skeleton, ClockFormat format) const {
    const MutexLock lock(mutex_);
    const auto [found, isNew] = patterns_.try_emplace({std::string(skeleton), format});
    if (isNew) found->second = bestPattern(skeleton, format);
    std::string answer = found->second;
    if (patterns_.size() > kMostPatterns) patterns_.clear();
    return answer;
}

std::string LocaleDates::bestPattern(std::string_view skeleton, ClockFormat format) const {
    // Asked for 12 hours, some locales (Japanese) would write 00 to 11.
    if (skeleton.find('h') != skeleton.npos) format = ClockFormat::TwelveHour;
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale = localeOf(identifier_);
    if (format == ClockFormat::TwelveHour) locale.setKeywordValue("hours", "h12", status);
    if (format == ClockFormat::TwentyFourHour) locale.setKeywordValue("hours", "h23", status);
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(locale, status));
    if (U_FAILURE(status)) return {};
    const icu::StringPiece bytes(skeleton.data(), static_cast<std::int32_t>(skeleton.size()));
    const icu::UnicodeString best = generator->getBestPattern(icu::UnicodeString::fromUTF8(bytes),
                                                              UDATPG_MATCH_HOUR_FIELD_LENGTH, status);
    return U_SUCCESS(status) ? utf8(best) : std::string();
}

}  // namespace kx
