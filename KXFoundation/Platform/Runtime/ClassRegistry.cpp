// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/ClassRegistry.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/OperationExchange.h>

namespace kx {

ClassRegistry& ClassRegistry::shared() {
    static auto& registry = *new ClassRegistry;
    return registry;
}

Class& ClassRegistry::classFor(const Class::Description& description) {
    const std::lock_guard lock(mutex_);
    if (const auto found = byType_.find(description.type); found != byType_.end()) return *found->second;
    auto& made = *new Class(description);
    byType_.emplace(description.type, &made);
    if (!byName_.emplace(made.name_, &made).second) {
        log(LogLevel::Warning, "two classes are named " + made.name_ + "; by name the first one is found");
    }
    if (made.superclass_) {
        made.superclass_->subclasses_.push_back(&made);
        for (const auto kind : {OperationKind::Instance, OperationKind::ClassLevel}) {
            made.mutableTable(kind).copyFrom(made.superclass_->table(kind));
        }
    }
    if (description.defineOperations) description.defineOperations(made);
    return made;
}

Class* ClassRegistry::named(std::string_view name) {
    const std::lock_guard lock(mutex_);
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

std::uint32_t ClassRegistry::registerOperation(OperationKind kind, std::string_view name,
                                               const std::type_info& signature) {
    const std::lock_guard lock(mutex_);
    Names& known = names(kind);
    if (const auto found = known.indexes.find(name); found != known.indexes.end()) {
        if (known.operations[found->second].signature == signature) return found->second;
        if (!std::exchange(known.operations[found->second].refused, true))
            log(LogLevel::Fault,
                "operation " + std::string(name) + " is known with another signature; refused");
        return kUnregistered;
    }
    const auto index = static_cast<std::uint32_t>(known.operations.size());
    known.operations.push_back({std::string(name), signature});
    known.indexes.emplace(name, index);
    return index;
}

void ClassRegistry::implement(Class& cls, OperationKind kind, std::uint32_t index, AnyFunction function,
                              OperationTable::Origin origin) {
    if (index == kUnregistered) return;  // the refusal was logged when the name was registered
    const std::lock_guard lock(mutex_);
    origin.own = true;
    cls.mutableTable(kind).set(index, function, origin);
    origin.own = false;
    spread(cls, kind, index, function, origin);
}

void ClassRegistry::spread(Class& cls, OperationKind kind, std::uint32_t index, AnyFunction function,
                           const OperationTable::Origin& origin) {
    for (Class* subclass : cls.subclasses_) {
        if (subclass->table(kind).origin(index).own) continue;
        subclass->mutableTable(kind).set(index, function, origin);
        spread(*subclass, kind, index, function, origin);
    }
}

std::uint32_t ClassRegistry::find(OperationKind kind, const Class& cls, std::string_view name) {
    const auto found = names(kind).indexes.find(name);
    if (found == names(kind).indexes.end() || !cls.table(kind).function(found->second)) return kUnregistered;
    return found->second;
}

Class& ClassRegistry::ownerOf(Class& cls, OperationKind kind, std::uint32_t index) {
    Class* owner = &cls;
    while (!owner->table(kind).origin(index).own && owner->superclass_) owner = owner->superclass_;
    return *owner;
}

void ClassRegistry::exchange(Class& cls, OperationKind kind, std::string_view target,
                             std::string_view replacement) {
    const std::lock_guard lock(mutex_);
    const std::uint32_t o = find(kind, cls, target);
    const std::uint32_t r = find(kind, cls, replacement);
    const auto refuse = [&](std::string_view why) {
        log(LogLevel::Fault, "cannot exchange " + std::string(target) + " and " + std::string(replacement) +
                                 " of " + cls.name_ + ": " + std::string(why));
    };
    if (o == kUnregistered || r == kUnregistered) return refuse("the class does not know both");
    if (names(kind).operations[o].signature != names(kind).operations[r].signature) {
        return refuse("their signatures differ");
    }
    const AnyFunction functionO = cls.table(kind).function(o);
    const AnyFunction functionR = cls.table(kind).function(r);
    const OperationTable::Origin originO = cls.table(kind).origin(o);
    const OperationTable::Origin originR = cls.table(kind).origin(r);
    if (!originO.own) {
        implement(cls, kind, o, functionR, originR);
        implement(cls, kind, r, functionO, originO);
        return;
    }
    // The replacement may be inherited: then it is the base's entry that the exchange changes.
    Class& ownerR = ownerOf(cls, kind, r);
    implement(cls, kind, o, functionR, originR);
    implement(ownerR, kind, r, functionO, originO);
}

void ClassRegistry::describeTable(const Class& cls, OperationKind kind, std::string& text) {
    const OperationTable& table = cls.table(kind);
    for (const auto& [name, index] : names(kind).indexes) {
        if (!table.function(index)) continue;
        const OperationTable::Origin origin = table.origin(index);
        text += kind == OperationKind::Instance ? "\n  - " : "\n  + ";
        text += name;
        if (!origin.own) text += " (inherited)";
        if (origin.implementation != name) text += " runs " + origin.implementation + " (exchanged)";
    }
}

std::string ClassRegistry::describe(const Class& cls) {
    const std::lock_guard lock(mutex_);
    std::string text = cls.name_;
    for (const Class* base = cls.superclass_; base; base = base->superclass_) text += " : " + base->name_;
    describeTable(cls, OperationKind::Instance, text);
    describeTable(cls, OperationKind::ClassLevel, text);
    return text;
}

std::uint32_t registerOperation(OperationKind kind, std::string_view name, const std::type_info& signature) {
    return ClassRegistry::shared().registerOperation(kind, name, signature);
}

void implementOperation(Class& cls, OperationKind kind, std::uint32_t index, AnyFunction function,
                        std::string_view name) {
    ClassRegistry::shared().implement(cls, kind, index, function, {true, std::string(name)});
}

void reportUnknownOperation(const Class& cls, std::string_view name) {
    callerError(cls.name() + " does not know the operation " + std::string(name));
}

void InstanceMethodSwizzling(Class& cls, std::string_view target, std::string_view replacement) {
    ClassRegistry::shared().exchange(cls, OperationKind::Instance, target, replacement);
}

void ClassMethodSwizzling(Class& cls, std::string_view target, std::string_view replacement) {
    ClassRegistry::shared().exchange(cls, OperationKind::ClassLevel, target, replacement);
}

}  // namespace kx
