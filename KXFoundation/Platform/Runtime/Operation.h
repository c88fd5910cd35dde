// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>
#include <typeinfo>
#include <utility>

#include <KXFoundation/Platform/Runtime/Class.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/OperationTable.h>

/// An operation that can be exchanged at run time. Calling one looks its implementation up in the table of
/// the receiver's class, at the cost of a virtual call; InstanceMethodSwizzling (OperationExchange.h) swaps
/// entries.
///
///     inline constinit Operation<void(NSTextAlignment)> setAlignmentOperation{"setAlignment:"};
///
///     void NSTextField::defineOperations(Class& cls) {
///         setAlignmentOperation.implement<&NSTextField::applyAlignment>(cls);
///     }
///     void NSTextField::setAlignment(NSTextAlignment a) { setAlignmentOperation(*this, a); }
///
/// The signature leaves the receiver out: it is NSObject& (Class& for class-level operations) behind a thunk,
/// so a class may exchange what it inherits. One name has one signature; a second, different one is refused
/// with a log line, and calls through it answer as an unknown operation does: a caller error, then R{}. Any
/// thread may call; implementing and exchanging take one lock and may run while others call.
namespace kx {

template <class Receiver, class Signature>
class BasicOperation;

template <class Receiver, class R, class... A>
class BasicOperation<Receiver, R(A...)> {
  public:
    using Function = R (*)(Receiver&, A...);

    constexpr explicit BasicOperation(const char* name) noexcept : name_(name) {}
    BasicOperation(const BasicOperation&) = delete;
    BasicOperation& operator=(const BasicOperation&) = delete;

    [[nodiscard]] std::string_view name() const noexcept { return name_; }

    R operator()(Receiver& receiver, A... arguments) const {
        AnyFunction function = table(receiver).function(index_.load(std::memory_order_relaxed));
        if (!function) [[unlikely]] {
            function = resolve(receiver);
            if (!function) return R();
        }
        return reinterpret_cast<Function>(function)(receiver, std::forward<A>(arguments)...);
    }

    /// Makes `function` the class's own implementation, and that of every subclass without one of its own.
    void implement(Class& cls, Function function) const {
        implementOperation(cls, kind, index(), reinterpret_cast<AnyFunction>(function), name_);
    }

    /// The same for a member function of the receiver's class: implement<&NSTextField::applyAlignment>(cls).
    template <auto Member>
    void implement(Class& cls) const {
        implement(cls, [](Receiver& receiver, A... arguments) -> R {
            return callMember(Member, receiver, std::forward<A>(arguments)...);
        });
    }

  private:
    static constexpr OperationKind kind =
        std::is_same_v<Receiver, Class> ? OperationKind::ClassLevel : OperationKind::Instance;

    template <class T>
    static R callMember(R (T::*member)(A...), Receiver& receiver, A... arguments) {
        return (static_cast<T&>(receiver).*member)(std::forward<A>(arguments)...);
    }

    static const OperationTable& table(NSObject& receiver) noexcept {
        return receiver.isa().table(OperationKind::Instance);
    }
    static const OperationTable& table(Class& receiver) noexcept {
        return receiver.table(OperationKind::ClassLevel);
    }

    std::uint32_t index() const noexcept {
        std::uint32_t found = index_.load(std::memory_order_relaxed);
        if (found == kUnregistered) {
            found = registerOperation(kind, name_, typeid(R(A...)));
            index_.store(found, std::memory_order_relaxed);
        }
        return found;
    }

    [[gnu::noinline]] AnyFunction resolve(Receiver& receiver) const {
        const AnyFunction function = table(receiver).function(index());
        if (!function) reportUnknownOperation(classOf(receiver), name_);
        return function;
    }

    static const Class& classOf(NSObject& receiver) noexcept { return receiver.isa(); }
    static const Class& classOf(Class& receiver) noexcept { return receiver; }

    const char* name_;
    mutable std::atomic<std::uint32_t> index_{kUnregistered};
};

template <class Signature>
using Operation = BasicOperation<NSObject, Signature>;

template <class Signature>
using ClassOperation = BasicOperation<Class, Signature>;

}  // namespace kx
