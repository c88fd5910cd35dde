// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Cache/Disk/DiskStore.h>
#include <KXFoundation/Platform/Runtime/Log.h>

// How a store keeps its limits: the head of the log moves on, and files that lie before it go.

namespace kx::disk {

double DiskStore::age(const Record& record) const {
    const std::chrono::duration<double> now = clock_->wallTime().time_since_epoch();
    return now.count() - record.stamp.sinceEpoch();
}

bool DiskStore::isExpired(const Record& record) const {
    return limits_.age > 0 && age(record) > limits_.age;
}

bool DiskStore::isOver() const {
    return (limits_.count != 0 && index_.liveCount() > limits_.count) ||
           (limits_.cost != 0 && index_.liveCost() > limits_.cost);
}

bool DiskStore::isWasteful() const {
    return index_.deadBytes() > index_.liveBytes() + 2 * segmentSize_;
}

/// Drops from the old end of the log until the limits hold. What was read since it was written is spared once
/// and goes to the new end; so does, where only dead entries are to go, every live one. The budget bounds how
/// many bytes one call moves, but for the value that was just set: that comes last, whatever was read.
void DiskStore::holdLimits(std::uint64_t budget, std::optional<std::uint64_t> justSet) {
    while (const auto place = index_.oldest()) {
        const bool isLive = index_.isLive(*place);
        const bool isTooOld = isLive && isExpired(place->record());
        const bool over = isOver();
        if (isLive && !isTooOld && !over && !isWasteful()) break;
        if (isLive && !isTooOld) {
            const std::uint64_t size = place->record().entrySize();
            const bool isJustSet = place->record().keyHash == justSet;
            const bool isWanted = !over || isJustSet || place->segment->used[place->slot];
            const bool isAffordable = isJustSet || size <= budget;
            if (!over && !isAffordable) break;
            const Carried carried = isWanted && isAffordable ? carry(*place) : Carried::Refused;
            if (carried == Carried::Refused && !over) break;
            if (carried == Carried::Done) budget -= std::min(size, budget);
            if (carried == Carried::Refused) ++evictions_;
        } else if (isTooOld) {
            ++evictions_;
        }
        index_.dropOldest();
    }
    publishHead(Dropped::ForNewer);
}

/// Writes a live entry once more, at the tail. A damaged one is not worth it, and would keep all after it in
/// the log.
DiskStore::Carried DiskStore::carry(const Place& place) {
    const Record record = place.record();
    const auto entry = readEntry(place);
    if (!entry) {
        const ErrorKind kind = entry.error().kind;
        const bool isGone = kind == ErrorKind::Corrupt || kind == ErrorKind::Missing;
        if (isGone) logError("disk cache, value dropped", entry.error());
        return isGone ? Carried::Damaged : Carried::Refused;
    }
    const auto stored = std::span(*entry).subspan(sizeof(EntryHeader));
    const std::string_view key(reinterpret_cast<const char*>(stored.data()), record.keySize);
    const auto done = append(record.form, key, stored.subspan(record.keySize), record.stamp);
    return done ? Carried::Done : Carried::Refused;
}

/// The bytes of a live entry; Corrupt if they are not what was written.
Result<std::vector<std::byte>> DiskStore::readEntry(const Place& place) {
    const Record& record = place.record();
    const Error corrupt{ErrorKind::Corrupt, 0, place.segment->file->path()};
    std::vector<std::byte> entry(record.entrySize());
    const auto got = place.segment->file->readAt(record.offset, entry);
    if (!got) return got.error();
    if (*got != entry.size()) return corrupt;
    const auto header = readStruct<EntryHeader>(entry.data());
    const auto payload = std::span<const std::byte>(entry).subspan(sizeof header + record.keySize);
    if (header.payloadHash != hashOfContents(payload)) return corrupt;
    const std::string_view key(reinterpret_cast<const char*>(entry.data()) + sizeof header, record.keySize);
    if (hashOfKey(key) != record.keyHash) return corrupt;
    return entry;
}

void DiskStore::publishHead(Dropped dropped) {
    const Position head = index_.head();
    if (head > knownHead_) {
        knownHead_ = head;
        (void)page_->setHead(head);  // a lost page knows nothing of what is dropped
    }
    if (auto emptied = index_.takeEmptied(); !emptied.empty()) removeLater(std::move(emptied), dropped);
}

/// Values in the files may have been synced there, and replaced or carried on by entries that are not synced
/// yet: these are synced first. Where that fails the files stay, until the folder is opened the next time.
void DiskStore::removeLater(std::vector<std::string> paths, Dropped dropped) {
    unsynced_->forget(paths);
    queue_->async([files = files_, unsynced = unsynced_, paths = std::move(paths), dropped] {
        if (dropped == Dropped::ForNewer && !unsynced->sync()) return;
        for (const std::string& path : paths) (void)files->remove(path);
    });
}

}  // namespace kx::disk
