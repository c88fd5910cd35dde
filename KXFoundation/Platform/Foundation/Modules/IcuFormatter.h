// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <unicode/smpdtfmt.h>

#include <KXFoundation/Platform/Foundation/IcuModule.h>

/// The formatters of IcuModule's table. Private to the module.
namespace kx {

struct IcuFormatter {
    std::unique_ptr<icu::SimpleDateFormat> icu;
    // The zone in use: one without a name by its offset, else `known`.
    std::int32_t offset = 0;
    bool isNamed = false;
    std::string name = {};
    std::unique_ptr<const icu::TimeZone> known = {};  // what ICU has under the name, none for nothing

    void useOffset(std::int32_t wanted);
    void useZone(double utc, std::int32_t wanted, const char* zone);
};

IcuFormatter* openFormatter(const char* pattern, std::int32_t size, const char* locale);
void closeFormatter(IcuFormatter* formatter);
bool formatDate(IcuFormatter* formatter, double utc, std::int32_t offset, const char* zone,
                const IcuText* text);
bool parseDate(IcuFormatter* formatter, const char* text, std::int32_t size, double* milliseconds);

}  // namespace kx
