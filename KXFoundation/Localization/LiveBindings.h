// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include <KXFoundation/Platform/Runtime/NSObject.h>

/// What follows the language: a binding is kept with its object, and dies with it. Private to Localization;
/// main thread.
namespace kx::live {

/// An object has one binding of each kind at most.
enum class Slot : std::uint8_t { Text, Placeholder, Layout, Custom, Exempt };

using Apply = std::function<void(NSObject&)>;

/// Calls `apply` now and after every change of the language, until the object dies or the slot gets another
/// binding. One without `apply` only marks the object.
void attach(const std::shared_ptr<NSObject>& object, Slot slot, Apply apply);
void detach(NSObject& object, Slot slot);
[[nodiscard]] bool isAttached(const NSObject& object, Slot slot);
/// Calls the object's bindings now.
void applyAgain(const NSObject& object);

}  // namespace kx::live
