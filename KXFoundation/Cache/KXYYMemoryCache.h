// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Cache/KXMemoryCacheProtocol.h>

namespace kx {

/// A memory store that accepts every call and holds nothing. Any thread.
class KX_EXPORT KXYYMemoryCache : public Subclass<KXYYMemoryCache, KXMemoryCacheProtocol> {
  public:
    [[nodiscard]] static std::shared_ptr<KXYYMemoryCache> initWithNameSpace(
        std::optional<std::string_view> nameSpace) {
        return make<KXYYMemoryCache>(nameSpace);
    }
    bool init(std::optional<std::string_view> nameSpace) override {
        nameSpace_ = nameSpace;
        return NSObject::init();
    }

    [[nodiscard]] bool containsObjectForKey(KXCacheKey) override { return false; }
    [[nodiscard]] Value objectForKey(KXCacheKey) override { return {}; }
    void setObject(Value, KXCacheKey) override {}
    void setObjectWithCost(Value, KXCacheKey, std::uint64_t) override {}
    void removeObjectForKey(KXCacheKey) override {}
    void removeAllObjects() override {}

    [[nodiscard]] std::optional<std::string> nameSpace() const override { return nameSpace_; }
    [[nodiscard]] std::uint64_t totalCount() const override { return 0; }
    [[nodiscard]] std::uint64_t totalCost() const override { return 0; }
    [[nodiscard]] std::uint64_t countLimit() const override { return 0; }
    void setCountLimit(std::uint64_t) override {}
    [[nodiscard]] std::uint64_t costLimit() const override { return 0; }
    void setCostLimit(std::uint64_t) override {}
    [[nodiscard]] double ageLimit() const override { return 0; }
    void setAgeLimit(double) override {}

  private:
    std::optional<std::string> nameSpace_;
};

}  // namespace kx
