// SPDX-License-Identifier: MIT

#include <KXFoundation/DateTime/NSDateFormatter_Standard.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

struct Shared {
    std::shared_ptr<NSDateFormatter> formatter = make<NSDateFormatter>();
    Shared() {
        formatter->setLocale(NSLocale::localeWithLocaleIdentifier("en_US"));
        formatter->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
        formatter->setDateFormat("yyyy-MM-dd HH:mm:ss");
    }
};

constinit ProcessState<Shared> shared;

}  // namespace

std::shared_ptr<NSDateFormatter> NSDateFormatter_Standard::standardFormatter() {
    return shared.get().formatter;
}

}  // namespace kx
