// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Cache/KXDiskCacheProtocol.h>

namespace kx {

/// A disk store that accepts every call, holds nothing and never calls a callback. It wants a path, but keeps
/// none. Any thread.
class KX_EXPORT KXYYDiskCache : public Subclass<KXYYDiskCache, KXDiskCacheProtocol> {
  public:
    /// None for an absent or empty path.
    [[nodiscard]] static std::shared_ptr<KXYYDiskCache> initWithPath(std::optional<std::string_view> path) {
        return make<KXYYDiskCache>(path);
    }
    bool init(std::optional<std::string_view> path) override {
        return path && !path->empty() && NSObject::init();
    }

    [[nodiscard]] bool containsObjectForKey(KXCacheKey) override { return false; }
    void containsObjectForKey(KXCacheKey, KXCacheContains) override {}
    [[nodiscard]] Value objectForKey(KXCacheKey) override { return {}; }
    void objectForKey(KXCacheKey, KXCacheObject) override {}
    void setObject(Value, KXCacheKey) override {}
    void setObject(Value, KXCacheKey, KXCacheDone) override {}
    void removeObjectForKey(KXCacheKey) override {}
    void removeObjectForKey(KXCacheKey, KXCacheKeyDone) override {}
    void removeAllObjects() override {}
    void removeAllObjectsWithBlock(KXCacheDone) override {}

    [[nodiscard]] std::optional<std::string> nameSpace() const override { return std::nullopt; }
    [[nodiscard]] std::optional<std::string> path() const override { return std::nullopt; }
    [[nodiscard]] std::uint64_t totalCount() const override { return 0; }
    [[nodiscard]] std::uint64_t totalCost() const override { return 0; }
    [[nodiscard]] std::uint64_t countLimit() const override { return 0; }
    void setCountLimit(std::uint64_t) override {}
    [[nodiscard]] std::uint64_t costLimit() const override { return 0; }
    void setCostLimit(std::uint64_t) override {}
    [[nodiscard]] double ageLimit() const override { return 0; }
    void setAgeLimit(double) override {}
};

}  // namespace kx
