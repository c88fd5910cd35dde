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

/// What a disk store is to KXCache and to the image cache. A class conforms by deriving:
/// `class MyStore : public Subclass<MyStore, KXDiskCacheProtocol>`.
///
/// The forms with a callback return at once and call it when the operation is done, on a thread of the
/// store's choice; without a callback the operation is done all the same, but a query is not.
class KX_EXPORT KXDiskCacheProtocol : public Subclass<KXDiskCacheProtocol, NSObject> {
  public:
    /// The initialiser of a store made through its class; false gives no store.
    virtual bool init(std::optional<std::string_view> path) = 0;

    [[nodiscard]] virtual bool containsObjectForKey(KXCacheKey key) = 0;
    virtual void containsObjectForKey(KXCacheKey key, KXCacheContains block) = 0;
    [[nodiscard]] virtual Value objectForKey(KXCacheKey key) = 0;
    virtual void objectForKey(KXCacheKey key, KXCacheObject block) = 0;
    virtual void setObject(Value object, KXCacheKey forKey) = 0;
    virtual void setObject(Value object, KXCacheKey forKey, KXCacheDone block) = 0;
    virtual void removeObjectForKey(KXCacheKey key) = 0;
    virtual void removeObjectForKey(KXCacheKey key, KXCacheKeyDone block) = 0;
    virtual void removeAllObjects() = 0;
    virtual void removeAllObjectsWithBlock(KXCacheDone block) = 0;

    [[nodiscard]] virtual std::optional<std::string> nameSpace() const = 0;
    [[nodiscard]] virtual std::optional<std::string> path() const = 0;
    [[nodiscard]] virtual std::uint64_t totalCount() const = 0;
    [[nodiscard]] virtual std::uint64_t totalCost() const = 0;
    [[nodiscard]] virtual std::uint64_t countLimit() const = 0;
    virtual void setCountLimit(std::uint64_t limit) = 0;
    [[nodiscard]] virtual std::uint64_t costLimit() const = 0;
    virtual void setCostLimit(std::uint64_t limit) = 0;
    /// Seconds.
    [[nodiscard]] virtual double ageLimit() const = 0;
    virtual void setAgeLimit(double seconds) = 0;

    /// Optional: the file under which the store keeps the key.
    [[nodiscard]] virtual std::optional<std::string> cachePathForKey(KXCacheKey) const {
        return std::nullopt;
    }
    /// Optional: how many seconds ago the key's value was set, whichever process did so; below zero if that
    /// is in the future by the present clock. Without it the ages of KXCache::load end with the process.
    [[nodiscard]] virtual std::optional<double> ageOfObjectForKey(KXCacheKey) const { return std::nullopt; }
};

/// Optional for a disk store: derive from this too if a namespace alone says where the store lies. KXCache's
/// namespace form then calls it in place of init(path).
class KX_EXPORT KXNameSpaceInitializer {
  public:
    virtual ~KXNameSpaceInitializer() = default;
    virtual bool initWithNameSpace(std::optional<std::string_view> nameSpace) = 0;

  protected:
    KXNameSpaceInitializer() = default;
    KXNameSpaceInitializer(const KXNameSpaceInitializer&) = default;
    KXNameSpaceInitializer& operator=(const KXNameSpaceInitializer&) = default;
};

}  // namespace kx
