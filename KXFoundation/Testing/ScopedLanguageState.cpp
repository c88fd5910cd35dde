// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Testing/ScopedLanguageState.h>

namespace kx::testing {

void ScopedLanguageState::exchange() {
    std::swap(selectLanguage_, selectLanguage);
    std::swap(selectLog_, selectLog);
    std::swap(currentUse_, lCurrentUseLanguage);
    std::swap(supported_, lSupportLanguageSet);
    std::swap(rightToLeft_, rtlLanguageSet);
    std::swap(selectBundle_, selectLanguageBundle);
    std::swap(defaultBundle_, defaultLanguageBundle);
    std::swap(currentBundle_, currentLanguageBundle);
}

void ScopedLanguageState::restart() {
    for (auto* text : {&selectLanguage, &selectLog, &lCurrentUseLanguage}) text->reset();
    for (auto* set : {&lSupportLanguageSet, &rtlLanguageSet}) set->reset();
    for (auto* bundle : {&selectLanguageBundle, &defaultLanguageBundle, &currentLanguageBundle})
        bundle->reset();
}

}  // namespace kx::testing
