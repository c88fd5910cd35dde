// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

/// Observers of one key of one object: told just before its value changes, just after, or both. A setter
/// announces:
///
///     void setImages(Value images) {
///         const ChangeNotice notice(*this, "images");
///         images_ = std::move(images);
///     }
///
/// An object that nobody observes pays one load per notice.
namespace kx {

enum class ChangePhase : std::uint8_t { Will = 1, Did = 2 };
enum class ChangeOptions : std::uint8_t { Will = 1, Did = 2, Both = 3 };

using ChangeCallback = std::function<void(NSObject& object, std::string_view key, ChangePhase phase)>;

/// An observation, which ends when the token is destroyed or remove() is called, and with the object.
class KX_EXPORT ObservationToken {
  public:
    ObservationToken() noexcept = default;
    ObservationToken(ObservationToken&& other) noexcept = default;
    ObservationToken& operator=(ObservationToken&& other) noexcept;
    ~ObservationToken() { remove(); }

    void remove();

    /// One registration; private to Runtime.
    struct Observer;

  private:
    friend ObservationToken observe(const std::shared_ptr<NSObject>&, std::string_view, ChangeOptions,
                                    ChangeCallback);
    ObservationToken(std::weak_ptr<NSObject> object, std::shared_ptr<Observer> observer) noexcept;

    std::weak_ptr<NSObject> object_;
    std::shared_ptr<Observer> observer_;
};

/// Calls back on the thread that changes the value, in the order of registration, until the token ends.
/// Observers may come and go inside a callback: a new one is told from the next notice on, an ended one no
/// more. An absent object is never observed. Any thread.
[[nodiscard]] KX_EXPORT ObservationToken observe(const std::shared_ptr<NSObject>& object,
                                                 std::string_view key, ChangeOptions options,
                                                 ChangeCallback callback);

KX_EXPORT void willChange(NSObject& object, std::string_view key);
KX_EXPORT void didChange(NSObject& object, std::string_view key);

/// Both notices around a scope. The key must outlive it.
class KX_EXPORT ChangeNotice {
  public:
    ChangeNotice(NSObject& object, std::string_view key) : object_(object), key_(key) {
        willChange(object, key);
    }
    ~ChangeNotice() { didChange(object_, key_); }
    ChangeNotice(const ChangeNotice&) = delete;
    ChangeNotice& operator=(const ChangeNotice&) = delete;

  private:
    NSObject& object_;
    std::string_view key_;
};

}  // namespace kx
