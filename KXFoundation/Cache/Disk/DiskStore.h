// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Cache/Disk/DiskIndex.h>
#include <KXFoundation/Cache/Disk/HeaderPage.h>
#include <KXFoundation/Cache/Disk/StoredValue.h>
#include <KXFoundation/Cache/Disk/UnsyncedFiles.h>
#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx::disk {

/// Limits of a store; 0 is none.
struct DiskLimits {
    std::uint64_t count = 0;
    std::uint64_t cost = 0;  ///< bytes of payload
    double age = 0;          ///< seconds
};

struct DiskStatistics {
    std::uint64_t hits = 0;
    std::uint64_t misses = 0;
    std::uint64_t evictions = 0;
    std::uint64_t count = 0;
    std::uint64_t cost = 0;
    std::uint64_t bytes = 0;  ///< of all entries, those included that wait to be dropped
};

/// A folder of segments that processes share. A change is one append under the page's lock; the index of each
/// process follows the log. Private to Cache. Any thread.
///
/// The folder is opened at the first call. Where that or a change fails, nothing has changed and the error is
/// answered; readers try the folder again a second later at the earliest, a change at once.
class DiskStore {
  public:
    /// Files that are done with are deleted on the queue.
    DiskStore(std::string folder, std::shared_ptr<DispatchQueue> queue);

    [[nodiscard]] Result<bool> contains(std::string_view key);
    /// Null if there is none. A damaged entry is Corrupt once, and none from then on.
    [[nodiscard]] Result<Value> get(std::string_view key);
    [[nodiscard]] Result<void> set(std::string_view key, const StoredValue& value);
    [[nodiscard]] Result<void> remove(std::string_view key);
    [[nodiscard]] Result<void> clear();
    /// Waits until what this store changed so far would survive a power cut.
    [[nodiscard]] Result<void> synchronize();

    [[nodiscard]] DiskLimits limits() const;
    [[nodiscard]] Result<void> changeLimits(const std::function<void(DiskLimits&)>& change);
    [[nodiscard]] Result<DiskStatistics> statistics();
    /// The file that holds the key's value.
    [[nodiscard]] std::optional<std::string> fileOf(std::string_view key);
    /// Seconds since the key's value was set.
    [[nodiscard]] std::optional<double> ageOf(std::string_view key);

  private:
    using Place = DiskIndex::Place;
    using Segment = DiskIndex::Segment;
    class PageLock;
    struct Read {
        Form form{};
        std::uint64_t payloadSize = 0;
        std::uint64_t keyHash = 0;
        Position position;
        std::uint64_t salt = 0;
        std::uint16_t keySize = 0;
        std::shared_ptr<const FileMapping> mapping;
    };

    // Opening and following the log.
    Result<void> open() KX_REQUIRES(mutex_);
    Result<void> openToChange() KX_REQUIRES(mutex_);
    Result<void> openPage() KX_REQUIRES(mutex_);
    Result<bool> loadIfKept() KX_REQUIRES(mutex_);
    Result<bool> keepPage(const std::vector<std::uint32_t>& numbers) KX_REQUIRES(mutex_);
    Result<void> load(const std::vector<std::uint32_t>& numbers) KX_REQUIRES(mutex_);
    Result<std::vector<std::uint32_t>> segmentNumbers();
    Result<void> loadSegment(std::uint32_t number, Position tail) KX_REQUIRES(mutex_);
    Result<void> mendLast(bool isDamaged) KX_REQUIRES(mutex_);
    /// Opens the folder, or reads what others have changed in it.
    Result<void> openAndFollow() KX_REQUIRES(mutex_);
    [[nodiscard]] bool isAtTheEnd() const KX_REQUIRES(mutex_);
    Result<void> follow(const HeaderPage::Ends& ends) KX_REQUIRES(mutex_) {
        return ends.tail > known_ || ends.head > knownHead_ ? replay(ends) : Result<void>();
    }
    Result<void> replay(const HeaderPage::Ends& ends) KX_REQUIRES(mutex_);
    Result<void> replaySegment(std::uint32_t number, Position tail) KX_REQUIRES(mutex_);
    void leave() KX_REQUIRES(mutex_);
    enum class Use : bool { Read, Change };
    bool leaveIfReplaced(Use use) KX_REQUIRES(mutex_);
    [[nodiscard]] bool isReplaced() KX_REQUIRES(mutex_);
    [[nodiscard]] bool isPageReplaced() KX_REQUIRES(mutex_);
    [[nodiscard]] Error lostPage() const;

    // Changing, under the page's lock.
    Result<void> append(Form form, std::string_view key, std::span<const std::byte> payload, Stamp stamp)
        KX_REQUIRES(mutex_);
    Result<void> roll() KX_REQUIRES(mutex_);
    void holdLimits(std::uint64_t budget, std::optional<std::uint64_t> justSet = std::nullopt)
        KX_REQUIRES(mutex_);
    enum class Carried : std::uint8_t { Done, Refused, Damaged };
    Carried carry(const Place& place) KX_REQUIRES(mutex_);
    Result<std::vector<std::byte>> readEntry(const Place& place) KX_REQUIRES(mutex_);
    /// Whether what was in the dropped files may have come to stand elsewhere.
    enum class Dropped : bool { ForGood, ForNewer };
    void publishHead(Dropped dropped) KX_REQUIRES(mutex_);
    void removeLater(std::vector<std::string> paths, Dropped dropped) KX_REQUIRES(mutex_);

    [[nodiscard]] bool isOver() const KX_REQUIRES(mutex_);
    [[nodiscard]] double age(const Record& record) const;
    [[nodiscard]] bool isExpired(const Record& record) const KX_REQUIRES(mutex_);
    [[nodiscard]] bool isWasteful() const KX_REQUIRES(mutex_);
    [[nodiscard]] Result<std::optional<Place>> locate(std::string_view key) KX_REQUIRES(mutex_);
    Result<std::optional<Read>> prepareRead(std::string_view key) KX_REQUIRES(mutex_);
    Result<std::optional<Read>> readElsewhere(std::string_view key, const Place& place, Error why)
        KX_REQUIRES(mutex_);
    Result<Value> readValue(std::string_view key, const Read& read);
    void heal(std::string_view key, const Read& read);

    const std::string folder_;
    const std::shared_ptr<DispatchQueue> queue_;
    const std::shared_ptr<FileSystem> files_;
    const std::shared_ptr<Clock> clock_;
    const std::shared_ptr<UnsyncedFiles> unsynced_;

    mutable Mutex mutex_;
    std::unique_ptr<HeaderPage> page_ KX_GUARDED_BY(mutex_);  // absent while the folder is not open
    std::chrono::nanoseconds lookAgainAt_ KX_GUARDED_BY(mutex_){0};
    std::optional<Error> whyClosed_ KX_GUARDED_BY(mutex_);
    DiskIndex index_ KX_GUARDED_BY(mutex_);
    Position known_ KX_GUARDED_BY(mutex_);      // the index knows all entries before this
    Position knownHead_ KX_GUARDED_BY(mutex_);  // and none before this
    DiskLimits limits_ KX_GUARDED_BY(mutex_);
    std::uint64_t segmentSize_ KX_GUARDED_BY(mutex_) = kLargestSegment;
    std::vector<std::byte> entry_ KX_GUARDED_BY(mutex_);  // being written
    std::uint64_t hits_ KX_GUARDED_BY(mutex_) = 0;
    std::uint64_t misses_ KX_GUARDED_BY(mutex_) = 0;
    std::uint64_t evictions_ KX_GUARDED_BY(mutex_) = 0;
};

}  // namespace kx::disk
