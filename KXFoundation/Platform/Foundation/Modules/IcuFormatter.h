#pragma once

#include <cstdint>
#include <memory>

#include <unicode/smpdtfmt.h>

#include <KXFoundation/Platform/Foundation/IcuModule.h>

/// The formatters of IcuModule's table. Private to the module.
namespace kx {

struct IcuFormatter {
    std::unique_ptr<icu::SimpleDateFormat> icu;
    std::int32_t offset = 0;  // of its zone

    void useOffset(std::int32_t wanted);
};

IcuFormatter* openFormatter(const char* pattern, std::int32_t size, const char* locale);
void closeFormatter(IcuFormatter* formatter);
bool formatDate(IcuFormatter* formatter, double utc, std::int32_t offset, const IcuText* text);
bool parseDate(IcuFormatter* formatter, const char* text, std::int32_t size, double* milliseconds);

}  // namespace kx
