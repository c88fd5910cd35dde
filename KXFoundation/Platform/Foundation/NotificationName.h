// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>

namespace kx {

/// A notification's name that also says what its payload is: a bool, an integer, a double, a text or an
/// object. The payload is the notification's userInfo(), so untyped and typed observers of one name see the
/// same.
///
///     inline constinit const NotificationName<double> VolumeDidChange{"VolumeDidChange"};
///     VolumeDidChange.post(0.5);
///     auto token = VolumeDidChange.observe([](double volume) { ... });
template <class Payload>
class NotificationName : public NSNotificationName {
  public:
    consteval explicit NotificationName(const char* literal) : NSNotificationName(literal) {}

    void post(Payload payload, NSNotificationCenter& centre = NSNotificationCenter::defaultCenter()) const {
        centre.postNotificationName(*this, nullptr, Value(std::move(payload)));
    }

    /// Calls the block with the payload until the token ends; not for a notification whose payload is of
    /// another type.
    template <std::invocable<Payload> Block>
    [[nodiscard]] NotificationToken observe(
        Block block, NSNotificationCenter& centre = NSNotificationCenter::defaultCenter()) const {
        return centre.addObserverForName(
            *this, nullptr, [block = std::move(block)](const NSNotification& notification) mutable {
                if (auto payload = read(notification.userInfo())) block(Payload(*std::move(payload)));
            });
    }

  private:
    static auto read(const Value& value) {
        if constexpr (std::same_as<Payload, bool>) {
            return value.asBoolean();
        } else if constexpr (std::integral<Payload>) {
            return value.asInteger();
        } else if constexpr (std::floating_point<Payload>) {
            return value.asReal();
        } else if constexpr (std::same_as<Payload, std::string>) {
            return value.asString();
        } else {
            return objectOf(objectCast<typename Payload::element_type>(value.asObject()));
        }
    }
    static std::optional<Payload> objectOf(Payload object) {
        return object ? std::optional(std::move(object)) : std::nullopt;
    }
};

}  // namespace kx
