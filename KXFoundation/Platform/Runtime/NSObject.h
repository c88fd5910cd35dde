// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeindex>
#include <utility>

#include <KXFoundation/Platform/Runtime/Class.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>

/// Objects are made in two steps behind one call and held by std::shared_ptr:
///
///     class MyList : public kx::Subclass<MyList, kx::KXList> {
///      public:
///         bool init(std::string_view title) {            // an initialiser; false makes make() answer none
///             if (!Super::init()) return false;
///             title_ = title;
///             return true;
///         }
///     };
///     std::shared_ptr<MyList> list = kx::make<MyList>("Harbours");
///
/// make() allocates, fixes the object's class, then runs the initialiser that fits its arguments. So an
/// initialiser may register the object, hand it out (self()) and call virtual operations, and a base's
/// initialiser already knows the class of what is being made. Constructors of object classes are protected
/// and do nothing.
namespace kx {

struct SideRecord;

class KX_EXPORT NSObject : public std::enable_shared_from_this<NSObject> {
  public:
    using ClassType = NSObject;

    virtual ~NSObject();
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;

    static Class& classObject();

    /// The class the object was made as.
    [[nodiscard]] const Class& isa() const noexcept { return *isa_; }
    [[nodiscard]] Class& isa() noexcept { return *isa_; }
    [[nodiscard]] const std::string& className() const noexcept { return isa_->name(); }
    [[nodiscard]] bool isKindOfClass(const Class& cls) const noexcept { return isa_->isSubclassOf(cls); }

    /// One line for a person; "<ClassName>" unless a class says more.
    [[nodiscard]] virtual std::string description() const;

    /// Equality of contents; identity unless a class says otherwise.
    [[nodiscard]] virtual bool isEqual(const NSObject& other) const;

    bool init() { return true; }

    /// A class's own operations are put into its tables here; see Operation.h.
    static void defineOperations(Class&) {}

  protected:
    NSObject() = default;

    /// The object itself, shared; from the initialiser on. None once its last reference is gone.
    template <class T>
    [[nodiscard]] std::shared_ptr<T> self(T*) {
        return std::static_pointer_cast<T>(weak_from_this().lock());
    }

  private:
    template <class T>
    friend std::shared_ptr<T> allocateObject(Class& cls);
    friend SideRecord& sideRecord(NSObject& object);
    friend SideRecord* existingSideRecord(const NSObject& object) noexcept;

    Class* isa_ = nullptr;
    std::atomic<SideRecord*> side_{nullptr};
};

/// The step before the initialiser; make() is what applications call.
template <class T>
std::shared_ptr<T> allocateObject(Class& cls) {
    struct Allocation final : T {};
    std::shared_ptr<T> object;
    if constexpr (MainThreadOnly<T>) {
        object = std::shared_ptr<Allocation>(new Allocation, MainThreadDeleter());
    } else {
        object = std::make_shared<Allocation>();
    }
    object->isa_ = &cls;
    return object;
}

/// Makes a T with the initialiser T::init(arguments...); nullptr when that answers false.
template <class T, class... Arguments>
requires std::same_as<typename T::ClassType, T>  // derive through Subclass<T, Base>
[[nodiscard]] std::shared_ptr<T> make(Arguments&&... arguments) {
    std::shared_ptr<T> object = allocateObject<T>(T::classObject());
    if (!object->init(std::forward<Arguments>(arguments)...)) return nullptr;
    return object;
}

/// A type's name without its scope; what stands in brackets has scopes of its own.
[[nodiscard]] constexpr std::string_view withoutScope(std::string_view type) noexcept {
    constexpr std::string_view kClosing = ")]}>", kOpening = "([{<";
    int depth = 0;
    for (std::size_t end = type.size(); end > 0; --end) {
        const char letter = type[end - 1];
        if (kClosing.find(letter) != kClosing.npos) ++depth;
        if (kOpening.find(letter) != kOpening.npos) --depth;
        if (depth == 0 && letter == ':') return type.substr(end);
    }
    return type;
}

/// "... [with T = kx::KXList]" or "... [T = kx::KXList]".
template <class T>
[[nodiscard]] constexpr const char* signatureNaming() noexcept {
    return __PRETTY_FUNCTION__;
}

/// The unqualified name of a C++ type, as the compiler spells it.
template <class T>
[[nodiscard]] constexpr std::string_view typeName() noexcept {
    std::string_view text = signatureNaming<T>();
    text.remove_prefix(text.find("T = ") + 4);
    text.remove_suffix(1);
    return withoutScope(text);
}

/// Ties a C++ type to its Class object: `class MyList : public Subclass<MyList, KXList>`.
template <class Self, class Base>
class Subclass : public Base {
  public:
    using ClassType = Self;
    using Super = Base;

    static Class& classObject() {
        static Class& cls = Class::registered(
            {typeName<Self>(), typeid(Self), &Base::classObject(), allocator(), operations()});
        return cls;
    }

  protected:
    Subclass() = default;

    [[nodiscard]] std::shared_ptr<Self> self() { return NSObject::self(static_cast<Self*>(this)); }

  private:
    using Allocator = std::shared_ptr<NSObject> (*)(Class&);
    static constexpr Allocator allocator() {
        if constexpr (std::is_abstract_v<Self>) {
            return nullptr;
        } else {
            return [](Class& cls) -> std::shared_ptr<NSObject> { return allocateObject<Self>(cls); };
        }
    }
    static constexpr void (*operations())(Class&) {
        // A type without operations of its own inherits the name only; running it again would mark the base's
        // own.
        return &Self::defineOperations == &Base::defineOperations ? nullptr : &Self::defineOperations;
    }
};

/// The object as a T, or nullptr if it is not of T's class or a subclass; absent gives absent.
template <class T>
[[nodiscard]] std::shared_ptr<T> objectCast(const std::shared_ptr<NSObject>& object) noexcept {
    if (!object || !object->isKindOfClass(T::classObject())) return nullptr;
    return std::static_pointer_cast<T>(object);
}

}  // namespace kx
