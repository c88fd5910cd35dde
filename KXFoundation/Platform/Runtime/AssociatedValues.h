// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// Stores a value with an object under a key (any address that is unique to its purpose), so that an
/// extension can give every object of a class a property. A null value removes the entry. Values are
/// immutable and shared: "retain" and "copy" are the same here, but for objects, which are shared. They are
/// released with the object. Any thread.
KX_EXPORT void setAssociatedValue(NSObject& object, const void* key, Value value);

/// The stored value, null if there is none.
[[nodiscard]] KX_EXPORT Value associatedValue(const NSObject& object, const void* key);

}  // namespace kx
