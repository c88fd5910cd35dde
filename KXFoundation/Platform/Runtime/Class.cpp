// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Class.h>
#include <KXFoundation/Platform/Runtime/ClassRegistry.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

Class::Class(const Description& description)
    : name_(description.name), superclass_(description.superclass), allocate_(description.allocate) {}

Class& Class::registered(const Description& description) {
    return ClassRegistry::shared().classFor(description);
}

Class* Class::named(std::string_view name) {
    return ClassRegistry::shared().named(name);
}

bool Class::isSubclassOf(const Class& other) const noexcept {
    for (const Class* cls = this; cls; cls = cls->superclass_) {
        if (cls == &other) return true;
    }
    return false;
}

std::shared_ptr<NSObject> Class::allocate() const {
    return allocate_ ? allocate_(const_cast<Class&>(*this)) : nullptr;
}

std::string Class::describe() const {
    return ClassRegistry::shared().describe(*this);
}

}  // namespace kx
