// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Cache/KXMemoryCacheProtocol.h>
#include <KXFoundation/Platform/Foundation/NSCache.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A memory store. Limits on count, cost and age (0 is none) hold after every set; values are shared, never
/// copied; under memory pressure half of them leave. Any thread; see NSCache for the order in which values
/// leave and for what a hit costs.
class KX_EXPORT KXMemoryCache : public Subclass<KXMemoryCache, KXMemoryCacheProtocol> {
  public:
    [[nodiscard]] static std::shared_ptr<KXMemoryCache> initWithNameSpace(
        std::optional<std::string_view> nameSpace) {
        return make<KXMemoryCache>(nameSpace);
    }
    bool init(std::optional<std::string_view> nameSpace) override;

    [[nodiscard]] bool containsObjectForKey(KXCacheKey key) override;
    [[nodiscard]] Value objectForKey(KXCacheKey key) override;
    /// Sets at cost 0. An absent object or key changes nothing.
    void setObject(Value object, KXCacheKey forKey) override {
        setObjectWithCost(std::move(object), forKey, 0);
    }
    void setObjectWithCost(Value object, KXCacheKey forKey, std::uint64_t cost) override;
    void removeObjectForKey(KXCacheKey key) override;
    void removeAllObjects() override { cache_->removeAllObjects(); }

    [[nodiscard]] std::optional<std::string> nameSpace() const override { return nameSpace_; }
    [[nodiscard]] std::uint64_t totalCount() const override { return statistics().count; }
    [[nodiscard]] std::uint64_t totalCost() const override { return statistics().cost; }
    [[nodiscard]] std::uint64_t countLimit() const override { return cache_->countLimit(); }
    void setCountLimit(std::uint64_t limit) override { cache_->setCountLimit(limit); }
    [[nodiscard]] std::uint64_t costLimit() const override { return cache_->totalCostLimit(); }
    void setCostLimit(std::uint64_t limit) override { cache_->setTotalCostLimit(limit); }
    [[nodiscard]] double ageLimit() const override { return cache_->ageLimit(); }
    void setAgeLimit(double seconds) override { cache_->setAgeLimit(seconds); }

    using Statistics = NSCache::Statistics;
    [[nodiscard]] Statistics statistics() const { return cache_->statistics(); }

  private:
    std::optional<std::string> nameSpace_;
    std::shared_ptr<NSCache> cache_;
    std::shared_ptr<void> pressure_;
};

}  // namespace kx
