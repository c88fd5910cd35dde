// SPDX-License-Identifier: MIT

#include "pages/KeychainPage.h"

#include <string>

#include <KXFoundation/Device/KXKeychainUtils.h>
#include <KXFoundation/Platform/Services/KeychainChoice.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

constexpr std::string_view kKey = "gallery.saves";

/// Counts the saves of all runs.
void saveOnceMore() {
    const std::int64_t saves = KXKeychainUtils::load<std::int64_t>(kKey).value_or(0);
    KXKeychainUtils::save(saves + 1, kKey);
}

std::string orNone(const Value& value) {
    return value.isNull() ? text("general.none") : value.description();
}

std::string_view nameOf(KeychainCapability::Store store) {
    switch (store) {
        case KeychainCapability::Store::SecretService:
            return "keychain.secret_service";
        case KeychainCapability::Store::File:
            return "keychain.file";
        case KeychainCapability::Store::None:
            break;
    }
    return "general.none";
}

}  // namespace

KeychainPage::KeychainPage() {
    saveOnceMore();
}

void KeychainPage::build(Column& column, Gallery& gallery) {
    const KeychainCapability capability = keychainCapability();
    column.title(text("keychain.title"));
    column.paragraph(text("keychain.explanation"));
    column.space(12);
    column.pair(text("keychain.store"), text(nameOf(capability.store)));
    column.paragraph(capability.why);
    column.space(8);
    column.pair(text("keychain.saves"), orNone(KXKeychainUtils::loadDataForKey(kKey, ValueClass::NSNumber)));
    column.pair(text("keychain.other_class"),
                orNone(KXKeychainUtils::loadDataForKey(kKey, ValueClass::NSString)));
    column.space(8);
    const auto showingAnew = [&gallery](void (*change)()) {
        return [&gallery, change] {
            change();
            gallery.rebuild();
        };
    };
    column.row({pushButton("button.save", showingAnew(saveOnceMore)),
                pushButton("button.remove", showingAnew([] { KXKeychainUtils::deleteKeyDataFor(kKey); }))});
}

}  // namespace gallery
