// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// The value as a C++ type, absent if it is of another one: an integer that T cannot hold is absent too, an
/// object class gives a std::shared_ptr.
template <class T>
[[nodiscard]] auto typedValue(const Value& value) {
    if constexpr (std::derived_from<T, NSObject>) {
        return objectCast<T>(value.asObject());
    } else if constexpr (std::same_as<T, Value>) {
        return value.isNull() ? std::nullopt : std::optional(value);
    } else if constexpr (std::same_as<T, std::string>) {
        const auto text = value.asString();
        return text ? std::optional(std::string(*text)) : std::nullopt;
    } else if constexpr (std::same_as<T, bool>) {
        return value.asBoolean();
    } else if constexpr (std::integral<T>) {
        const auto integer = value.asInteger();
        return integer && std::in_range<T>(*integer) ? std::optional(static_cast<T>(*integer)) : std::nullopt;
    } else {
        static_assert(std::floating_point<T>, "a text, a number, a Value or an object class");
        const auto real = value.asReal();
        return real ? std::optional(static_cast<T>(*real)) : std::nullopt;
    }
}

}  // namespace kx
