// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include <KXFoundation/Cache/Disk/DiskSegment.h>
#include <KXFoundation/Cache/Disk/HashTable.h>

namespace kx::disk {

/// Where every live value lies, and the log in its order. Private to Cache; one thread at a time.
///
/// Invariants: segments stand in the order of their numbers; a place of the map is the last entry of its key;
/// what lies before the head is in no total.
class DiskIndex {
  public:
    struct Segment {
        std::shared_ptr<DiskSegment> file;
        std::vector<Record> records;
        std::vector<bool> used;  // by record: it was read since it was written
        std::size_t head = 0;    // the first record that is not dropped
        std::uint64_t end = sizeof(SegmentHeader);
        bool isSealed = false;
    };
    struct Place {
        Segment* segment = nullptr;
        std::size_t slot = 0;
        [[nodiscard]] const Record& record() const noexcept { return segment->records[slot]; }
        bool operator==(const Place&) const = default;
    };

    /// A segment behind all others.
    Segment& add(std::shared_ptr<DiskSegment> file);
    /// The entry becomes the last one of the log.
    void apply(Segment& segment, const Record& record);

    [[nodiscard]] std::optional<Place> find(std::uint64_t keyHash) const;
    [[nodiscard]] bool isLive(const Place& place) const;
    /// The value of this place is gone, without an entry that says so.
    void forget(const Place& place);

    [[nodiscard]] Segment* last() const { return segments_.empty() ? nullptr : segments_.back().get(); }
    /// The first entry that is not dropped.
    [[nodiscard]] std::optional<Place> oldest();
    /// Drops it, and its value if that was live.
    void dropOldest();
    /// Drops all before the position.
    void dropBefore(Position head);
    /// Where the log begins, `end` if nothing is left.
    [[nodiscard]] Position head();
    /// The files of segments that hold nothing any more.
    [[nodiscard]] std::vector<std::string> takeEmptied() { return std::exchange(emptied_, {}); }
    void clear();

    [[nodiscard]] std::uint64_t liveCount() const noexcept { return places_.size(); }
    [[nodiscard]] std::uint64_t liveCost() const noexcept { return liveCost_; }
    [[nodiscard]] std::uint64_t liveBytes() const noexcept { return liveBytes_; }
    [[nodiscard]] std::uint64_t deadBytes() const noexcept { return logBytes_ - liveBytes_; }

  private:
    void clearPlaces();
    void dropFirstSegment();

    std::deque<std::unique_ptr<Segment>> segments_;
    HashTable<Place> places_;
    std::vector<std::string> emptied_;
    std::uint64_t liveCost_ = 0;   // payloads
    std::uint64_t liveBytes_ = 0;  // their entries
    std::uint64_t logBytes_ = 0;   // all entries from the head on
};

}  // namespace kx::disk
