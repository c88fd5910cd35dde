// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/AssociatedValues.h>
#include <KXFoundation/Platform/Runtime/SideRecord.h>

namespace kx {

void setAssociatedValue(NSObject& object, const void* key, Value value) {
    SideRecord& side = sideRecord(object);
    const std::lock_guard lock(side.associatedMutex);
    value.swap(side.associated[key]);  // the former value is released after the lock: it may run destructors
    if (side.associated[key].isNull()) side.associated.erase(key);
}

Value associatedValue(const NSObject& object, const void* key) {
    SideRecord* side = existingSideRecord(object);
    if (!side) return {};
    const std::lock_guard lock(side->associatedMutex);
    const auto found = side->associated.find(key);
    return found == side->associated.end() ? Value() : found->second;
}

}  // namespace kx
