// SPDX-License-Identifier: MIT

#include <KXFoundation/Device/KXKeychainUtils.h>
#include <KXFoundation/Platform/Foundation/NSException.h>
#include <KXFoundation/Platform/Foundation/NSKeyedArchiver.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Services/SecItem.h>

namespace kx {

Value KXKeychainUtils::getKeychainQuery(std::optional<std::string_view> key) {
    if (!key) return {};
    return DictionaryBuilder()
        .set(kSecClass, kSecClassGenericPassword)
        .set(kSecAttrService, *key)
        .set(kSecAttrAccount, *key)
        .set(kSecAttrAccessible, kSecAttrAccessibleAfterFirstUnlock)
        .build();
}

namespace {

/// What an object's own encoding throws is one more reason why it cannot be archived.
Result<std::string> archived(const Value& object) {
    try {
        return NSKeyedArchiver::archivedDataWithRootObject(object);
    } catch (const NSException& exception) {
        return Error{ErrorKind::Unsupported, 0, exception.reason()};
    }
}

}  // namespace

void KXKeychainUtils::save(const Value& object, std::optional<std::string_view> key) {
    const Value query = getKeychainQuery(key);
    static_cast<void>(SecItemDelete(query));
    const auto archive = archived(object);
    if (!archive) return log(LogLevel::Warning, "归档到keychain失败:" + archive.error().message());
    const Value data = Value::data(std::as_bytes(std::span(*archive)));
    static_cast<void>(SecItemAdd(DictionaryBuilder(query).set(kSecValueData, data).build()));
}

Value KXKeychainUtils::loadDataForKey(std::optional<std::string_view> key, const ArchivedClass& cls) {
    const auto found = SecItemCopyMatching(DictionaryBuilder(getKeychainQuery(key))
                                               .set(kSecReturnData, true)
                                               .set(kSecMatchLimit, kSecMatchLimitOne)
                                               .build());
    if (!found) return {};
    try {
        const auto object = NSKeyedUnarchiver::unarchivedObjectOfClass(cls, *found->asData());
        return object ? *object : Value();
    } catch (const NSException& exception) {
        log(LogLevel::Warning, "解档 " + std::string(*key) + " 失败: " + exception.reason());
        return {};
    }
}

void KXKeychainUtils::deleteKeyDataFor(std::optional<std::string_view> key) {
    static_cast<void>(SecItemDelete(getKeychainQuery(key)));
}

}  // namespace kx
