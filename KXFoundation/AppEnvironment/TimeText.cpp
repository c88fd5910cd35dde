// SPDX-License-Identifier: MIT

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Platform/Foundation/NSDate.h>
#include <KXFoundation/Platform/Foundation/NSDateFormatter.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>

namespace kx {

std::string KXAppUtils::getTime(std::int64_t seconds, std::optional<std::string_view> format) {
    const auto formatter = make<NSDateFormatter>();
    formatter->setLocale(make<NSLocale>("en_US"));
    formatter->setDateFormat(format);
    return formatter->stringFromDate(NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds)))
        .value_or("");
}

}  // namespace kx
