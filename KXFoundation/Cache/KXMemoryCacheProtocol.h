// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Cache/CacheKey.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// What a memory store is to KXCache and to the image cache. A class conforms by deriving:
/// `class MyStore : public Subclass<MyStore, KXMemoryCacheProtocol>`.
///
/// Objects are values, or objects held in one; none is a null value. What a store allows on which thread is
/// its own affair; KXCache adds nothing.
class KX_EXPORT KXMemoryCacheProtocol : public Subclass<KXMemoryCacheProtocol, NSObject> {
  public:
    /// The initialiser of a store made through its class; false gives no store.
    virtual bool init(std::optional<std::string_view> nameSpace) = 0;

    [[nodiscard]] virtual bool containsObjectForKey(KXCacheKey key) = 0;
    [[nodiscard]] virtual Value objectForKey(KXCacheKey key) = 0;
    virtual void setObject(Value object, KXCacheKey forKey) = 0;
    virtual void setObjectWithCost(Value object, KXCacheKey forKey, std::uint64_t cost) = 0;
    virtual void removeObjectForKey(KXCacheKey key) = 0;
    virtual void removeAllObjects() = 0;

    [[nodiscard]] virtual std::optional<std::string> nameSpace() const = 0;
    [[nodiscard]] virtual std::uint64_t totalCount() const = 0;
    [[nodiscard]] virtual std::uint64_t totalCost() const = 0;
    [[nodiscard]] virtual std::uint64_t countLimit() const = 0;
    virtual void setCountLimit(std::uint64_t limit) = 0;
    [[nodiscard]] virtual std::uint64_t costLimit() const = 0;
    virtual void setCostLimit(std::uint64_t limit) = 0;
    /// Seconds.
    [[nodiscard]] virtual double ageLimit() const = 0;
    virtual void setAgeLimit(double seconds) = 0;
};

}  // namespace kx
