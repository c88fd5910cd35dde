// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSKeyedUnarchiver.h>
#include <KXFoundation/Platform/Foundation/NSSecureCoding.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// Small values and objects in the keychain, each under a key, as keyed archives. Every failure is silent but
/// two, which are logged: what cannot be archived, and an NSException from a class's own decoding; a damaged
/// keychain file has a line of its own. No instances; any thread. A call waits for a file or for the Secret
/// Service; a service that is silent for kKeychainTimeout is not asked again for as long. See
/// keychainCapability() for which serves.
class KX_EXPORT KXKeychainUtils {
  public:
    KXKeychainUtils() = delete;

    /// The class, service, account and accessibility of the key's item (SecItem.h), which service and account
    /// name both. Null, which finds nothing, for an absent key.
    [[nodiscard]] static Value getKeychainQuery(std::optional<std::string_view> key);

    /// Deletes what is under the key, then adds this: a number, text, data, date, array, dictionary or an
    /// object with NSSecureCoding. What cannot be archived, be it for an NSException of its own encoding,
    /// leaves nothing under the key. Another thread may find nothing there in between. Where the store cannot
    /// be written the old item stays.
    static void save(const Value& object, std::optional<std::string_view> key);

    /// What is under the key if its class is that one, else null. An object's class must be the very one
    /// asked for or registered (registerSecureCoding). What a class's decoding throws but NSException passes
    /// through.
    [[nodiscard]] static Value loadDataForKey(std::optional<std::string_view> key, const ArchivedClass& cls);

    /// The same for one type: std::string, bool, an integer or floating-point type, or an object class.
    template <class T>
    [[nodiscard]] static auto load(std::optional<std::string_view> key);

    static void deleteKeyDataFor(std::optional<std::string_view> key);
};

template <class T>
auto KXKeychainUtils::load(std::optional<std::string_view> key) {
    if constexpr (std::derived_from<T, NSObject>) {
        return objectCast<T>(loadDataForKey(key, T::classObject()).asObject());
    } else if constexpr (std::same_as<T, std::string>) {
        const Value text = loadDataForKey(key, ValueClass::NSString);
        return text.isNull() ? std::nullopt : std::optional<std::string>(*text.asString());
    } else if constexpr (std::same_as<T, bool>) {
        return loadDataForKey(key, ValueClass::NSNumber).asBoolean();
    } else if constexpr (std::integral<T>) {
        return loadDataForKey(key, ValueClass::NSNumber).asInteger();
    } else {
        static_assert(std::floating_point<T>);
        return loadDataForKey(key, ValueClass::NSNumber).asReal();
    }
}

}  // namespace kx
