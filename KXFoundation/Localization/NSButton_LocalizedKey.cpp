// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Localization/NSButton_LocalizedKey.h>
#include <KXFoundation/Platform/Views/NSButton.h>

namespace kx {

void NSButton_LocalizedKey::setLocalizedKey(const std::shared_ptr<NSButton>& button,
                                            std::optional<std::string_view> key) {
    if (button && key && !key->empty()) button->setTitle(localized(*key));
}

std::optional<std::string> NSButton_LocalizedKey::localizedKey(const std::shared_ptr<NSButton>&) {
    return std::nullopt;
}

}  // namespace kx
