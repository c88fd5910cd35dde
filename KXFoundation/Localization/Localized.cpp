// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/Localized.h>

namespace kx {

std::string localized(std::string_view key, std::optional<std::string_view> tableName) {
    auto text = KXLocalizationUtils::localizedStringForKey(key, tableName);
    return text ? *std::move(text) : std::string(key);
}

}  // namespace kx
