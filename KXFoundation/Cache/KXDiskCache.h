// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Cache/KXDiskCacheProtocol.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A disk store: a folder of log segments (docs/formats/disk-cache.md), on a local file system, that
/// processes may share. It keeps values and objects that can be archived; what goes in comes out equal, with
/// its class. Any thread.
///
/// The forms with a callback take their turn on the store's own queue: what is changed without one meanwhile
/// comes before. What an object's decoding throws passes through objectForKey(key); in the other form an
/// NSException makes the answer none, with one line in the log.
///
/// A plain set survives the end of the process at any instant; a form with a callback answers when the change
/// would survive a power cut too, and changes that wait together share a sync. Where the disk refuses (full,
/// not writable) nothing changes, one line is logged, and a callback is called all the same. A damaged value
/// is none, with one line in the log.
///
/// Limits on count, cost (bytes of the stored values) and age (0 is none) hold after every set; the oldest
/// values leave first, but those that were read since are spared once: such a value keeps its place, and
/// counts, until its turn comes again, even when it is too old to be answered. Keys are at most 65,535 bytes
/// long, values at most 1 GiB.
class KX_EXPORT KXDiskCache : public Subclass<KXDiskCache, KXDiskCacheProtocol> {
  public:
    /// None for an absent or empty path. The folder is made and read at the first use.
    [[nodiscard]] static std::shared_ptr<KXDiskCache> initWithPath(std::optional<std::string_view> path) {
        return make<KXDiskCache>(path);
    }
    bool init(std::optional<std::string_view> path) override;

    [[nodiscard]] bool containsObjectForKey(KXCacheKey key) override;
    void containsObjectForKey(KXCacheKey key, KXCacheContains block) override;
    [[nodiscard]] Value objectForKey(KXCacheKey key) override;
    void objectForKey(KXCacheKey key, KXCacheObject block) override;
    /// An absent object or key changes nothing. What an object's encodeWithCoder throws passes through.
    void setObject(Value object, KXCacheKey forKey) override;
    void setObject(Value object, KXCacheKey forKey, KXCacheDone block) override;
    void removeObjectForKey(KXCacheKey key) override;
    void removeObjectForKey(KXCacheKey key, KXCacheKeyDone block) override;
    void removeAllObjects() override;
    void removeAllObjectsWithBlock(KXCacheDone block) override;

    /// Waits until every change made so far would survive a power cut; false, with one line in the log, if
    /// one may not. What the system has once failed to write counts as such until its file is dropped.
    bool synchronize();

    /// The last part of the path.
    [[nodiscard]] std::optional<std::string> nameSpace() const override;
    [[nodiscard]] std::optional<std::string> path() const override { return path_; }
    [[nodiscard]] std::uint64_t totalCount() const override { return statistics().count; }
    [[nodiscard]] std::uint64_t totalCost() const override { return statistics().cost; }
    [[nodiscard]] std::uint64_t countLimit() const override;
    void setCountLimit(std::uint64_t limit) override;
    [[nodiscard]] std::uint64_t costLimit() const override;
    void setCostLimit(std::uint64_t limit) override;
    [[nodiscard]] double ageLimit() const override;
    void setAgeLimit(double seconds) override;
    /// The segment that holds the key's value, absent if none does.
    [[nodiscard]] std::optional<std::string> cachePathForKey(KXCacheKey key) const override;
    /// To 1/256 seconds, which count as passed; absent if there is no value.
    [[nodiscard]] std::optional<double> ageOfObjectForKey(KXCacheKey key) const override;

    struct Statistics {
        std::uint64_t hits = 0;
        std::uint64_t misses = 0;
        std::uint64_t evictions = 0;  ///< values that left for a limit
        std::uint64_t count = 0;
        std::uint64_t cost = 0;
        std::uint64_t bytes = 0;  ///< what the log takes, dead entries included
    };
    [[nodiscard]] Statistics statistics() const;

  private:
    struct State;
    std::string path_;
    std::shared_ptr<State> state_;  // shared with the blocks that wait on the queue
};

}  // namespace kx
