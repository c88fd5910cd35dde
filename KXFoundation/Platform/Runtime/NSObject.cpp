// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/SideRecord.h>

namespace kx {

NSObject::~NSObject() {
    delete side_.load(std::memory_order_relaxed);
}

Class& NSObject::classObject() {
    static Class& cls = Class::registered(
        {"NSObject", typeid(NSObject), nullptr,
         [](Class& c) -> std::shared_ptr<NSObject> { return allocateObject<NSObject>(c); }, nullptr});
    return cls;
}

std::string NSObject::description() const {
    return "<" + className() + ">";
}

bool NSObject::isEqual(const NSObject& other) const {
    return this == &other;
}

}  // namespace kx
