// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Services/KeychainStore.h>
#include <KXFoundation/Platform/Services/SecItem.h>

namespace kx {

namespace {

/// A view into the query.
Result<KeychainItem> itemOf(const Value& query) {
    const auto service = query[kSecAttrService].asString();
    const auto account = query[kSecAttrAccount].asString();
    if (query[kSecClass].asString() != kSecClassGenericPassword || !service || !account)
        return Error{ErrorKind::Unsupported, 0, "keychain query"};
    return KeychainItem{*service, *account};
}

KeychainStore& store() {
    return KeychainStore::slot().current();
}

}  // namespace

Result<Value> SecItemCopyMatching(const Value& query) {
    const auto item = itemOf(query);
    if (!item) return item.error();
    const auto data = store().copy(*item);
    if (!data) return data.error();
    if (query[kSecReturnData] != Value(true)) return Value();
    return Value::data(std::as_bytes(std::span(*data)));
}

Result<void> SecItemAdd(const Value& query) {
    const auto item = itemOf(query);
    if (!item) return item.error();
    const auto data = query[kSecValueData].asData();
    if (!data) return Error{ErrorKind::Unsupported, 0, "keychain item without data"};
    return store().add(*item, {reinterpret_cast<const char*>(data->data()), data->size()});
}

Result<void> SecItemDelete(const Value& query) {
    const auto item = itemOf(query);
    if (!item) return item.error();
    return store().remove(*item);
}

}  // namespace kx
