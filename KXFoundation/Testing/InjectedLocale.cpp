// SPDX-License-Identifier: MIT

#include <KXFoundation/Testing/InjectedLocale.h>

namespace kx::testing {

void InjectedLocale::setPreferredLanguages(std::vector<std::string> languages) {
    const std::lock_guard lock(mutex_);
    languages_ = std::move(languages);
    ++version_;
}

void InjectedLocale::setLocale(std::string_view identifier) {
    const std::lock_guard lock(mutex_);
    locale_ = identifier;
    ++version_;
}

std::vector<std::string> InjectedLocale::preferredLanguages() const {
    const std::lock_guard lock(mutex_);
    return languages_;
}

std::string InjectedLocale::localeIdentifier() const {
    const std::lock_guard lock(mutex_);
    return locale_;
}

}  // namespace kx::testing
