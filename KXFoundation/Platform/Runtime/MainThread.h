#pragma once

#include <concepts>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Whether the calling thread is the main one: the process's first thread, until another one is made main.
[[nodiscard]] KX_EXPORT bool isMainThread() noexcept;

/// Makes the calling thread the main one; it is the one that makes the application. Before other threads run.
KX_EXPORT void adoptMainThread() noexcept;

/// A type that says `static constexpr bool kMainThreadOnly = true;`: its objects are touched and die on the
/// main thread only.
template <class T>
concept MainThreadOnly = requires {
    { T::kMainThreadOnly } -> std::convertible_to<bool>;
}
&&T::kMainThreadOnly;

}  // namespace kx
