// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A notification's name. Names of equal text are one interned name, so that comparing and posting need no
/// text. A constant costs nothing before its first use:
///
///     inline constinit const NSNotificationName ThingDidChange{"ThingDidChange"};
///
/// Interned names are kept for the life of the process. Any thread.
class KX_EXPORT NSNotificationName {
  public:
    /// From a literal.
    consteval explicit NSNotificationName(const char* literal) : literal_(literal) {}
    /// From any text, which is interned.
    [[nodiscard]] static NSNotificationName named(std::string_view text);

    NSNotificationName(const NSNotificationName& other) noexcept : interned_(&other.interned()) {}
    NSNotificationName& operator=(const NSNotificationName& other) noexcept {
        interned_.store(&other.interned(), std::memory_order_release);
        return *this;
    }

    /// Valid for the life of the process.
    [[nodiscard]] std::string_view text() const noexcept;

    [[nodiscard]] bool operator==(const NSNotificationName& other) const noexcept {
        return &interned() == &other.interned();
    }

    /// The one record of a text; private to Platform.
    struct Interned;
    [[nodiscard]] const Interned& interned() const noexcept {
        const Interned* found = interned_.load(std::memory_order_acquire);
        return found ? *found : intern();
    }
    /// The record of a text that was interned before, else nullptr: asking does not intern. Takes no lock.
    [[nodiscard]] static const Interned* find(std::string_view text) noexcept;

    explicit NSNotificationName(const Interned& interned) noexcept : interned_(&interned) {}

  private:
    const Interned& intern() const noexcept;

    std::string_view literal_;
    mutable std::atomic<const Interned*> interned_{nullptr};
};

struct NSNotificationName::Interned {
    std::string_view text;
    std::uint64_t hash;
    std::uint32_t number;  // dense, from 0
};

}  // namespace kx
