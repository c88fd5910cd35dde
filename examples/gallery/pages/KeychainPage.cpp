#include "pages/KeychainPage.h"

#include <functional>
#include <string>

#include <KXFoundation/Device/KXKeychainUtils.h>
#include <KXFoundation/Platform/Services/KeychainChoice.h>
#include <KXFoundation/Platform/Views/NSButton.h>

#include "Gallery.h"

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

std::shared_ptr<NSButton> button(std::string_view key, Gallery& gallery, std::function<void()> action) {
    auto made = make<NSButton>();
    made->setTitle(text(key));
    made->sizeToFit();
    made->setAction([&gallery, action = std::move(action)](NSControl&) {
        action();
        gallery.rebuild();
    });
    return made;
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
    column.row({button("button.save", gallery, saveOnceMore),
                button("button.remove", gallery, [] { KXKeychainUtils::deleteKeyDataFor(kKey); })},
               28);
}

}  // namespace gallery
