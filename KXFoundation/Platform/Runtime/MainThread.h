// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstdint>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSObject;

/// Whether the calling thread is the main one: the process's first thread, until another one is made main.
[[nodiscard]] KX_EXPORT bool isMainThread() noexcept;

/// Makes the calling thread the main one and promises that it serves the main queue; it is the one that makes
/// the application. Before other threads run.
KX_EXPORT void adoptMainThread() noexcept;

/// Whether something serves the main queue: a thread was made main, or its event loop has made a turn.
[[nodiscard]] KX_EXPORT bool mainQueueIsServed() noexcept;

/// A type that says `static constexpr bool kMainThreadOnly = true;`: its objects are touched and die on the
/// main thread only, whichever thread drops the last reference.
template <class T>
concept MainThreadOnly = requires {
    { T::kMainThreadOnly } -> std::convertible_to<bool>;
}
&&T::kMainThreadOnly;

/// The deleter of objects of such types. On the main thread it deletes at once, but inside a notification's
/// post only after it, since the post calls such objects without a reference of its own. On another thread it
/// gives the object to the main queue; if nothing serves that, it deletes in place.
struct KX_EXPORT MainThreadDeleter {
    void operator()(NSObject* object) const;
};

/// Lets the calling thread pass for the main one, or not, for a scope: for an executor that runs main and
/// background work on one thread.
class KX_EXPORT ScopedThreadRole {
  public:
    enum class Role : std::uint8_t { Actual, Main, Background };
    explicit ScopedThreadRole(Role role) noexcept;
    ~ScopedThreadRole();
    ScopedThreadRole(const ScopedThreadRole&) = delete;
    ScopedThreadRole& operator=(const ScopedThreadRole&) = delete;

  private:
    Role former_;
};

}  // namespace kx
