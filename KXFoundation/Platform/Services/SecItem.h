// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

/// The keychain by queries: dictionaries of attributes. Items are generic passwords, addressed by service and
/// account. The names serve as keys and values alike; of one that is not needed here (who may read an item
/// when) nothing is kept: the Secret Service and the file have no such classes. Any thread; see KeychainStore
/// for how long a call takes.
namespace kx {

inline constexpr std::string_view kSecClass = "kSecClass";
inline constexpr std::string_view kSecClassGenericPassword = "kSecClassGenericPassword";
inline constexpr std::string_view kSecAttrService = "kSecAttrService";
inline constexpr std::string_view kSecAttrAccount = "kSecAttrAccount";
inline constexpr std::string_view kSecAttrAccessible = "kSecAttrAccessible";
inline constexpr std::string_view kSecAttrAccessibleAfterFirstUnlock = "kSecAttrAccessibleAfterFirstUnlock";
inline constexpr std::string_view kSecValueData = "kSecValueData";
inline constexpr std::string_view kSecReturnData = "kSecReturnData";
inline constexpr std::string_view kSecMatchLimit = "kSecMatchLimit";
inline constexpr std::string_view kSecMatchLimitOne = "kSecMatchLimitOne";

// Each gives Unsupported for a query without class, service and account, else the keychain's own error.

/// The item's data, if the query asks for it (kSecReturnData), else null; Missing if there is no such item.
[[nodiscard]] KX_EXPORT Result<Value> SecItemCopyMatching(const Value& query);
/// Adds an item with the query's data (kSecValueData); Unsupported without.
KX_EXPORT Result<void> SecItemAdd(const Value& query);
/// Missing if there is no such item.
KX_EXPORT Result<void> SecItemDelete(const Value& query);

}  // namespace kx
