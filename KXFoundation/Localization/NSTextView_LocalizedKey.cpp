// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Localization/NSTextView_LocalizedKey.h>
#include <KXFoundation/Platform/Views/NSTextView.h>

namespace kx {

void NSTextView_LocalizedKey::setLocalizedKey(const std::shared_ptr<NSTextView>& view,
                                              std::optional<std::string_view> key) {
    if (view && key && !key->empty()) view->setString(localized(*key));
}

std::optional<std::string> NSTextView_LocalizedKey::localizedKey(const std::shared_ptr<NSTextView>&) {
    return std::nullopt;
}

}  // namespace kx
