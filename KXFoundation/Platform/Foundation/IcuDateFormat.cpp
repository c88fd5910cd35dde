// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/IcuDateFormat.h>
#include <KXFoundation/Platform/Foundation/IcuModule.h>

namespace kx {

namespace {

bool hasZoneField(std::string_view pattern) noexcept {
    bool isQuoted = false;
    for (const char c : pattern) {
        if (c == '\'') isQuoted = !isQuoted;
        if (!isQuoted && std::string_view("zZOvVXx").find(c) != std::string_view::npos) return true;
    }
    return false;
}

/// ICU counts in 32 bits.
bool isCountable(std::string_view text) noexcept {
    return text.size() <= INT32_MAX;
}

IcuFormatter* open(std::string_view pattern, const std::string& locale) {
    const IcuModule* const icu = icuModule();
    return icu && isCountable(pattern)
               ? icu->open(pattern.data(), static_cast<std::int32_t>(pattern.size()), locale.c_str())
               : nullptr;
}

}  // namespace

void IcuDateFormat::Closer::operator()(IcuFormatter* formatter) const {
    icuModule()->close(formatter);
}

IcuDateFormat::IcuDateFormat(std::string_view pattern, const std::string& localeIdentifier)
    : formatter_(open(pattern, localeIdentifier)), namesZone_(hasZoneField(pattern)) {}

std::optional<std::string> IcuDateFormat::format(double utc, std::int32_t offset,
                                                 const std::string& zone) const {
    const MutexLock lock(mutex_);
    std::string text;
    const IcuText into(text);
    const char* const name = namesZone_ ? zone.c_str() : "";
    if (!formatter_ || !icuModule()->format(formatter_.get(), utc * 1000, offset, name, &into))
        return std::nullopt;
    return text;
}

std::optional<IcuDateFormat::Parsed> IcuDateFormat::parse(std::string_view text) const {
    const MutexLock lock(mutex_);
    double milliseconds = 0;
    if (!formatter_ || !isCountable(text) ||
        !icuModule()->parse(formatter_.get(), text.data(), static_cast<std::int32_t>(text.size()),
                            &milliseconds)) {
        return std::nullopt;
    }
    return Parsed{milliseconds / 1000, namesZone_};
}

}  // namespace kx
