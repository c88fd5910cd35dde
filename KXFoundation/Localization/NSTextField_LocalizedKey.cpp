// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Localization/NSTextField_LocalizedKey.h>
#include <KXFoundation/Platform/Views/NSTextField.h>

namespace kx {

void NSTextField_LocalizedKey::setLocalizedPlaceHolder(const std::shared_ptr<NSTextField>& field,
                                                       std::optional<std::string_view> key) {
    if (field && key && !key->empty()) field->setPlaceholderString(localized(*key));
}

std::optional<std::string> NSTextField_LocalizedKey::localizedPlaceHolder(
    const std::shared_ptr<NSTextField>&) {
    return std::nullopt;
}

}  // namespace kx
