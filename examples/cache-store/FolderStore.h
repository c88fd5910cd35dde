// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include <KXFoundation/Cache/KXDiskCacheProtocol.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>

/// A disk store with one file per key, whose name tells the key: "nice" lies in `nice.archive`. It has no
/// limits; keys of more than some 80 bytes may be too long for a file's name, and are not kept. Any thread.
class FolderStore : public kx::Subclass<FolderStore, kx::KXDiskCacheProtocol> {
  public:
    using Key = kx::KXCacheKey;
    using Value = kx::Value;

    /// False, and so no store, where there can be no such folder.
    bool init(std::optional<std::string_view> path) override;

    bool containsObjectForKey(Key key) override;
    Value objectForKey(Key key) override;
    void setObject(Value object, Key forKey) override;
    void removeObjectForKey(Key key) override;
    void removeAllObjects() override;

    void containsObjectForKey(Key key, kx::KXCacheContains block) override;
    void objectForKey(Key key, kx::KXCacheObject block) override;
    void setObject(Value object, Key forKey, kx::KXCacheDone block) override;
    void removeObjectForKey(Key key, kx::KXCacheKeyDone block) override;
    void removeAllObjectsWithBlock(kx::KXCacheDone block) override;

    std::optional<std::string> nameSpace() const override { return folder_.filename(); }
    std::optional<std::string> path() const override { return folder_; }
    std::uint64_t totalCount() const override { return files().size(); }
    std::uint64_t totalCost() const override;
    std::uint64_t countLimit() const override { return 0; }
    void setCountLimit(std::uint64_t) override {}
    std::uint64_t costLimit() const override { return 0; }
    void setCostLimit(std::uint64_t) override {}
    double ageLimit() const override { return 0; }
    void setAgeLimit(double) override {}

    std::optional<std::string> cachePathForKey(Key key) const override;
    std::optional<double> ageOfObjectForKey(Key key) const override;

  private:
    std::filesystem::path fileOf(std::string_view key) const;
    std::vector<std::filesystem::path> files() const;
    /// Runs the work on the store's own queue, which keeps the store alive until then.
    void later(std::function<void(FolderStore&)> work);

    std::filesystem::path folder_;
    mutable std::mutex mutex_;  // one operation at a time
    std::shared_ptr<kx::DispatchQueue> queue_;
};
