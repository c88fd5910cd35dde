// SPDX-License-Identifier: MIT

// The first byte chooses locale and zone; what follows up to a line's end is a pattern, the rest a text.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSDateFormatter.h>

namespace {

using namespace kx;

std::shared_ptr<NSDateFormatter> formatterFor(unsigned choice) {
    static constexpr std::array<const char*, 4> kLocales{"en_US", "ar_EG", "ja_JP", "th_TH"};
    static constexpr std::array<const char*, 4> kZones{"UTC", "America/New_York", "Australia/Lord_Howe",
                                                       "Pacific/Apia"};
    static std::array<std::shared_ptr<NSDateFormatter>, 16> formatters;
    auto& formatter = formatters[choice % formatters.size()];
    if (!formatter) {
        formatter = make<NSDateFormatter>();
        formatter->setLocale(NSLocale::localeWithLocaleIdentifier(kLocales[choice % 4]));
        formatter->setTimeZone(NSTimeZone::timeZoneWithName(kZones[choice / 4 % 4]));
    }
    return formatter;
}

/// Whether a year loses its century.
bool hasShortYear(std::string_view pattern) {
    for (std::size_t at = 0; (at = pattern.find('y', at)) != pattern.npos;) {
        const std::size_t end = std::min(pattern.find_first_not_of('y', at), pattern.size());
        if (end - at == 2) return true;
        at = end;
    }
    return false;
}

/// Whether what such a pattern writes reads as the same again: no names, and no number that touches the next.
bool isPlain(std::string_view pattern) {
    constexpr std::string_view kNumbers = "yMdHkhKms";
    const auto touch = [&](char one, char other) {
        return one != other && kNumbers.find(one) != kNumbers.npos && kNumbers.find(other) != kNumbers.npos;
    };
    return pattern.find_first_not_of("yMdHkhKmsa :-/,.") == pattern.npos && !hasShortYear(pattern) &&
           std::ranges::adjacent_find(pattern, touch) == pattern.end();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string_view pattern = input.substr(0, input.find('\n'));
    const std::string_view text = input.substr(std::min(pattern.size() + 1, input.size()));
    const auto formatter = formatterFor(data[0]);
    static_cast<void>(NSDateFormatter::dateFormatFromTemplate(pattern, 0, formatter->locale()));
    formatter->setDateFormat(pattern);
    const auto date = formatter->dateFromString(text);
    if (!date) return 0;
    const auto written = formatter->stringFromDate(date);
    const auto back = formatter->dateFromString(written);
    if (isPlain(pattern) && back != date) std::abort();
    return 0;
}
