// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The table between the library and its module for ICU (Modules/IcuModule.cpp): plain data and C functions,
/// as the module links no code of ours. Private to Foundation.
namespace kx {

/// Where the module appends text, UTF-8.
struct IcuText {
    explicit IcuText(std::string& text)
        : append([](void* into, const char* bytes, std::size_t count) {
              static_cast<std::string*>(into)->append(bytes, count);
          }),
          context(&text) {}

    void (*append)(void* context, const char* bytes, std::size_t count);
    void* context;
};

/// What a locale says about dates.
struct IcuLocale {
    char digits[10][5];  ///< UTF-8, zero-terminated; empty ones where no ten digits write the numbers
    bool isGregorian;
    std::int32_t firstWeekday;  ///< 1 for Sunday to 7 for Saturday; 0 if unknown
};

struct IcuFormatter;

struct IcuModule {
    static constexpr std::uint32_t kVersion = 3;

    std::uint32_t version;
    /// Unicode's normalization form C of UTF-8. False if there is none to be had. Any thread.
    bool (*normalize)(const char* text, std::int32_t size, const IcuText* normalized);
    /// In upper case by the full mapping for no language in particular; answers how many units that takes.
    /// Any thread.
    std::int32_t (*upperCase)(const char16_t* text, std::int32_t size, char16_t* upper, std::int32_t most);
    /// The region that such a locale most likely has. False if none is known. Any thread.
    bool (*likelyRegion)(const char* locale, const IcuText* region);

    /// An unknown locale has the data of its language, else the root's. The symbols stay empty where the
    /// locale has none. Any thread.
    void (*readLocale)(const char* locale, IcuLocale* answer, const IcuText* amSymbol,
                       const IcuText* pmSymbol);
    /// The locale's arrangement of a skeleton's fields, hours as wide as in the skeleton; `hours` is the
    /// locale keyword ("h12", "h23"), null for the locale's own. False if there is none. Any thread.
    bool (*bestPattern)(const char* locale, const char* hours, const char* skeleton, std::int32_t size,
                        const IcuText* pattern);

    /// A formatter of one pattern; null if the locale has no data or the pattern makes no sense. One thread
    /// at a time.
    IcuFormatter* (*open)(const char* pattern, std::int32_t size, const char* locale);
    void (*close)(IcuFormatter* formatter);
    /// The text for milliseconds from 1970 in UTC, shown that many seconds east of it. The zone's name
    /// ("Europe/Berlin", empty for none) is for the fields that show it; where ICU's own rules for it say
    /// another offset, the offset itself stands there.
    bool (*format)(IcuFormatter* formatter, double utc, std::int32_t offset, const char* zone,
                   const IcuText* text);
    /// The milliseconds from 1970 that the whole text says: in UTC if it names its zone, else local.
    bool (*parse)(IcuFormatter* formatter, const char* text, std::int32_t size, double* milliseconds);
};

/// The module's table, opened at the first call (some milliseconds); nullptr if it is not there. Any thread.
[[nodiscard]] const IcuModule* icuModule();

}  // namespace kx
