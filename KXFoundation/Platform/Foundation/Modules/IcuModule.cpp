// SPDX-License-Identifier: MIT

#include <cstring>
#include <memory>

#include <unicode/calendar.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/normalizer2.h>
#include <unicode/numsys.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>

#include <KXFoundation/Platform/Foundation/Modules/IcuFormatter.h>
#include <KXFoundation/Platform/Foundation/Modules/IcuText.h>
#include <KXFoundation/Platform/Runtime/Module.h>

namespace kx {

namespace {

bool normalize(const char* text, std::int32_t size, const IcuText* normalized) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* form = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) return false;
    IcuTextSink sink(*normalized);
    form->normalizeUTF8(0, {text, size}, sink, nullptr, status);
    return U_SUCCESS(status);
}

std::int32_t upperCase(const char16_t* text, std::int32_t size, char16_t* upper, std::int32_t most) {
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t taken = u_strToUpper(upper, most, text, size, "", &status);
    return U_SUCCESS(status) ? taken : 0;
}

bool likelyRegion(const char* locale, const IcuText* region) {
    char full[ULOC_FULLNAME_CAPACITY] = "";
    char country[ULOC_COUNTRY_CAPACITY] = "";
    UErrorCode status = U_ZERO_ERROR;
    uloc_addLikelySubtags(locale, full, sizeof full, &status);
    uloc_getCountry(full, country, sizeof country, &status);
    if (status != U_ZERO_ERROR) return false;
    append(std::string_view(country), *region);
    return true;
}

void readDigits(const icu::Locale& locale, IcuLocale& answer) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberingSystem> system(icu::NumberingSystem::createInstance(locale, status));
    if (U_FAILURE(status) || system->isAlgorithmic() || system->getRadix() != 10) return;
    const icu::UnicodeString all = system->getDescription();
    for (std::int32_t i = 0; i < 10; ++i) {
        icu::CheckedArrayByteSink sink(answer.digits[i], sizeof answer.digits[i] - 1);
        icu::UnicodeString(all.char32At(all.moveIndex32(0, i))).toUTF8(sink);
    }
}

void readSymbols(const icu::Locale& locale, const IcuText& amSymbol, const IcuText& pmSymbol) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(locale, status);
    std::int32_t count = 0;
    const icu::UnicodeString* const halves = symbols.getAmPmStrings(count);
    if (U_FAILURE(status) || count != 2) return;
    append(halves[0], amSymbol);
    append(halves[1], pmSymbol);
}

void readCalendar(const icu::Locale& locale, IcuLocale& answer) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(locale, status));
    if (U_FAILURE(status)) return;
    answer.isGregorian = std::strcmp(calendar->getType(), "gregorian") == 0;
    const auto first = calendar->getFirstDayOfWeek(status);
    if (U_SUCCESS(status)) answer.firstWeekday = first;
}

void readLocale(const char* identifier, IcuLocale* answer, const IcuText* amSymbol, const IcuText* pmSymbol) {
    *answer = {};
    const icu::Locale locale(identifier);
    readDigits(locale, *answer);
    readSymbols(locale, *amSymbol, *pmSymbol);
    readCalendar(locale, *answer);
}

bool bestPattern(const char* identifier, const char* hours, const char* skeleton, std::int32_t size,
                 const IcuText* pattern) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale(identifier);
    if (hours) locale.setKeywordValue("hours", hours, status);
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(locale, status));
    if (U_FAILURE(status)) return false;
    const icu::UnicodeString best = generator->getBestPattern(icu::UnicodeString::fromUTF8({skeleton, size}),
                                                              UDATPG_MATCH_HOUR_FIELD_LENGTH, status);
    if (U_SUCCESS(status)) append(best, *pattern);
    return U_SUCCESS(status);
}

constexpr IcuModule kModule{
    .version = IcuModule::kVersion,
    .normalize = normalize,
    .upperCase = upperCase,
    .likelyRegion = likelyRegion,
    .readLocale = readLocale,
    .bestPattern = bestPattern,
    .open = openFormatter,
    .close = closeFormatter,
    .format = formatDate,
    .parse = parseDate,
};

}  // namespace

}  // namespace kx

extern "C" __attribute__((visibility("default"))) const void* kxModule(const kx::ModuleHost*) {
    return &kx::kModule;
}
