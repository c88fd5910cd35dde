// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Class.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The class of a store: `KXMemoryCache::classObject()`, a pointer to a class, or the name of one. A name
/// that no registered class has stands for no class, which conforms to nothing, and gives a log line; an
/// application registers its class by asking for it once (`MyStore::classObject()`).
class KX_EXPORT KXStoreClass {
  public:
    KXStoreClass(const Class& cls) noexcept : class_(&cls) {}
    KXStoreClass(const Class* cls) noexcept : class_(cls) {}
    KXStoreClass(std::nullptr_t) noexcept {}
    KXStoreClass(std::string_view name);
    KXStoreClass(const char* name) : KXStoreClass(name ? std::string_view(name) : std::string_view()) {}

    [[nodiscard]] bool conformsTo(const Class& protocol) const noexcept {
        return class_ && class_->isSubclassOf(protocol);
    }
    [[nodiscard]] const Class* get() const noexcept { return class_; }

  private:
    const Class* class_ = nullptr;
};

}  // namespace kx
