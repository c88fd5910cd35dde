// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/LanguageState.h>

namespace kx {

namespace {

/// Holds a variable that no destructor ends: a look-up may run while the process exits.
template <class T>
union Undestroyed {
    constexpr Undestroyed() : value() {}
    ~Undestroyed() {}
    T value;
};

using Text = Undestroyed<std::optional<std::string>>;
using Set = Undestroyed<std::optional<LanguageSet>>;
using Bundle = Undestroyed<std::shared_ptr<NSBundle>>;

constinit Text selected, mode, derived;
constinit Set supported, rightToLeft;
constinit Bundle selectedBundle, defaultBundle, currentBundle;

}  // namespace

constinit std::optional<std::string>& selectLanguage = selected.value;
constinit std::optional<std::string>& selectLog = mode.value;
constinit std::optional<std::string>& lCurrentUseLanguage = derived.value;
constinit std::optional<LanguageSet>& lSupportLanguageSet = supported.value;
constinit std::optional<LanguageSet>& rtlLanguageSet = rightToLeft.value;
constinit std::shared_ptr<NSBundle>& selectLanguageBundle = selectedBundle.value;
constinit std::shared_ptr<NSBundle>& defaultLanguageBundle = defaultBundle.value;
constinit std::shared_ptr<NSBundle>& currentLanguageBundle = currentBundle.value;

}  // namespace kx
