// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <utility>

#include <KXFoundation/Cache/Disk/DiskStore.h>
#include <KXFoundation/Platform/Runtime/GuardedRead.h>

namespace kx::disk {

/// The page's lock for one scope, with the index brought up to date under it.
class DiskStore::PageLock {
  public:
    explicit PageLock(DiskStore& store) KX_THREAD_ANNOTATION(no_thread_safety_analysis)
        : page_(*store.page_) {
        if (!page_.isWritable()) {
            result_ = Error{ErrorKind::Denied, EACCES, store.folder_};
        } else if (result_ = page_.lock(); result_) {
            isHeld_ = true;
            const auto ends = page_.ends();
            result_ = ends ? store.follow(*ends) : Result<void>(store.lostPage());
        }
    }
    ~PageLock() {
        if (isHeld_) page_.unlock();
    }
    PageLock(const PageLock&) = delete;
    PageLock& operator=(const PageLock&) = delete;
    [[nodiscard]] const Result<void>& result() const noexcept { return result_; }

  private:
    HeaderPage& page_;
    Result<void> result_;
    bool isHeld_ = false;
};

DiskStore::DiskStore(std::string folder, std::shared_ptr<DispatchQueue> queue)
    : folder_(std::move(folder)),
      queue_(std::move(queue)),
      files_(FileSystem::slot().shared()),
      clock_(Clock::slot().shared()),
      unsynced_(std::make_shared<UnsyncedFiles>(files_, folder_)) {}

Result<std::optional<DiskIndex::Place>> DiskStore::locate(std::string_view key) {
    const std::uint64_t hash = hashOfKey(key);
    if (auto opened = openAndFollow(); !opened) return Error(opened.error());
    auto place = index_.find(hash);
    if (!place && leaveIfReplaced(Use::Read)) {
        if (auto opened = open(); !opened) return Error(opened.error());
        place = index_.find(hash);
    }
    if (place && isExpired(place->record())) place = std::nullopt;
    return place;
}

Result<bool> DiskStore::contains(std::string_view key) {
    const MutexLock lock(mutex_);
    auto place = locate(key);
    if (!place) return std::move(place).error();
    return place->has_value();
}

std::optional<std::string> DiskStore::fileOf(std::string_view key) {
    const MutexLock lock(mutex_);
    const auto place = locate(key);
    return place && *place ? std::optional((*place)->segment->file->path()) : std::nullopt;
}

std::optional<double> DiskStore::ageOf(std::string_view key) {
    const MutexLock lock(mutex_);
    const auto place = locate(key);
    return place && *place ? std::optional(age((*place)->record())) : std::nullopt;
}

Result<std::optional<DiskStore::Read>> DiskStore::prepareRead(std::string_view key) {
    auto place = locate(key);
    if (!place) return std::move(place).error();
    if (!*place) return std::optional<Read>();
    Segment& segment = *(*place)->segment;
    const Record& record = (*place)->record();
    auto mapping = segment.file->mapped(record.end());
    if (!mapping) return readElsewhere(key, **place, std::move(mapping).error());
    if (segment.isSealed) segment.file->close();
    segment.used[(*place)->slot] = true;
    return std::optional(Read{record.form,
                              record.payloadSize,
                              record.keyHash,
                              {segment.file->number(), record.offset},
                              segment.file->salt(),
                              record.keySize,
                              std::move(*mapping)});
}

/// Where the file is gone, another process has just dropped it, and the value may stand elsewhere by now;
/// else somebody has deleted it.
Result<std::optional<DiskStore::Read>> DiskStore::readElsewhere(std::string_view key, const Place& place,
                                                                Error why) {
    if (why.kind != ErrorKind::Missing) return why;
    const Position former{place.segment->file->number(), place.record().offset};
    index_.forget(place);
    auto read = prepareRead(key);
    if (read && !*read && former >= knownHead_) return why;
    return read;
}

Result<Value> DiskStore::get(std::string_view key) {
    Read read;
    {
        const MutexLock lock(mutex_);
        auto prepared = prepareRead(key);
        ++(prepared && *prepared ? hits_ : misses_);
        if (!prepared) return std::move(prepared).error();
        if (!*prepared) return Value();
        read = std::move(**prepared);
    }
    return readValue(key, read);
}

/// Copies the payload out of the mapping and looks whether it is what was written. One that is, but that no
/// class here takes, stays for those that do.
Result<Value> DiskStore::readValue(std::string_view key, const Read& read) {
    const auto entry = read.mapping->bytes().subspan(read.position.offset,
                                                     sizeof(EntryHeader) + read.keySize + read.payloadSize);
    const auto stored = entry.subspan(sizeof(EntryHeader));
    std::vector<std::byte> payload;
    payload.reserve(read.payloadSize);
    EntryHeader header;
    bool isOtherKey = false;
    std::uint64_t hash = 0;
    const bool isReadable = guardedRead(entry, [&] {
        std::memcpy(static_cast<void*>(&header), entry.data(), sizeof header);
        isOtherKey =
            std::memcmp(stored.data(), key.data(), std::min<std::size_t>(key.size(), read.keySize)) != 0;
        hash = appendAndHash(stored.subspan(read.keySize), payload);
    });
    const bool isWhole = isReadable && header.keySize == read.keySize &&
                         header.payloadSize == read.payloadSize && header.payloadHash == hash &&
                         header.check == header.expectedCheck(read.keyHash, read.salt, read.position.offset);
    if (!isWhole) {
        heal(key, read);
        return Error{ErrorKind::Corrupt, 0, folder_ + "/" + DiskSegment::nameOf(read.position.segment)};
    }
    if (isOtherKey || key.size() != read.keySize) return Value();  // of the same hash
    if (read.form == Form::Data) return Value::data(std::move(payload));
    return valueOf(read.form, payload);
}

/// Takes the entry out for every process, unless it is another one by now.
void DiskStore::heal(std::string_view key, const Read& read) {
    const MutexLock lock(mutex_);
    if (!open()) return;
    const PageLock page(*this);
    const auto place = index_.find(read.keyHash);
    if (!place || Position{place->segment->file->number(), place->record().offset} != read.position) return;
    if (!page.result() || !append(Form::Removal, key, {}, Stamp::at(clock_->wallTime())))
        index_.forget(*place);
}

Result<void> DiskStore::set(std::string_view key, const StoredValue& value) {
    const auto payload = value.payload();
    if (key.size() > kLongestKey || payload.size() > kLargestValue)
        return Error{ErrorKind::TooLarge, 0, "a value or key for " + folder_};
    const MutexLock lock(mutex_);
    if (auto opened = openToChange(); !opened) return opened;
    const PageLock page(*this);
    if (!page.result()) return page.result();
    if (limits_.cost != 0 && payload.size() > limits_.cost) {
        if (!index_.find(hashOfKey(key))) return {};
        return append(Form::Removal, key, {}, Stamp::at(clock_->wallTime()));
    }
    if (auto done = append(value.form(), key, payload, Stamp::at(clock_->wallTime())); !done) return done;
    holdLimits(4 * payload.size() + (64 << 10), hashOfKey(key));
    return {};
}

Result<void> DiskStore::remove(std::string_view key) {
    const MutexLock lock(mutex_);
    if (auto opened = openToChange(); !opened) return opened;
    const PageLock page(*this);
    if (!page.result()) return page.result();
    if (!index_.find(hashOfKey(key))) return {};
    return append(Form::Removal, key, {}, Stamp::at(clock_->wallTime()));
}

/// Begins a new segment with an entry that clears; the files before it are deleted later.
Result<void> DiskStore::clear() {
    const MutexLock lock(mutex_);
    if (auto opened = openToChange(); !opened) return opened;
    const PageLock page(*this);
    if (!page.result()) return page.result();
    if (Segment* last = index_.last()) last->isSealed = true;
    if (auto done = append(Form::Clearing, "", {}, Stamp::at(clock_->wallTime())); !done) return done;
    index_.dropBefore({index_.last()->file->number(), 0});
    publishHead(Dropped::ForGood);
    return {};
}

/// The entry in one write at the tail, which then moves behind it.
Result<void> DiskStore::append(Form form, std::string_view key, std::span<const std::byte> payload,
                               Stamp stamp) {
    const Segment* const last = index_.last();
    if (!last || last->isSealed || last->end >= segmentSize_) {
        if (auto rolled = roll(); !rolled) return rolled;
    }
    Segment& segment = *index_.last();
    const auto offset = static_cast<std::uint32_t>(segment.end);
    EntryHeader header;
    header.payloadSize = static_cast<std::uint32_t>(payload.size());
    header.seconds = stamp.seconds;
    header.fraction = stamp.fraction;
    header.form = form;
    header.keySize = static_cast<std::uint16_t>(key.size());
    if (entry_.size() < header.entrySize()) entry_.resize(header.entrySize());
    std::memcpy(entry_.data() + sizeof header, key.data(), key.size());
    header.payloadHash = copyAndHash(payload, entry_.data() + sizeof header + key.size());
    const std::uint64_t keyHash = hashOfKey(key);
    header.check = header.expectedCheck(keyHash, segment.file->salt(), offset);
    std::memcpy(entry_.data(), &header, sizeof header);
    auto written = segment.file->append(offset, std::span(entry_).first(header.entrySize()));
    if (entry_.size() > kSmallestSegment * 4) entry_ = {};
    if (!written) return written;
    const Position tail{segment.file->number(), static_cast<std::uint32_t>(offset + header.entrySize())};
    if (!page_->setTail(tail)) return lostPage();

    index_.apply(segment, {keyHash, offset, header.payloadSize, stamp, form, header.keySize});
    known_ = tail;
    unsynced_->add(segment.file->path(), segment.file->file());
    return {};
}

/// Seals the last segment and begins the next one.
Result<void> DiskStore::roll() {
    Segment* const last = index_.last();
    const std::uint32_t before = std::max(last ? last->file->number() : 0, known_.segment);
    if (before >= kLastSegment) return lostPage();  // the next change starts over
    if (last && !last->isSealed) {
        if (auto sealed = last->file->seal(last->records, last->end); !sealed) return sealed;
        last->isSealed = true;
    }
    auto made = DiskSegment::create(files_, folder_, before + 1);
    for (std::uint32_t past = 2; !made && made.error().systemError == EEXIST; ++past)
        made = DiskSegment::create(files_, folder_, before + past);  // something that is no file stands there
    if (!made) return std::move(made).error();
    if (last) last->file->close();
    Segment& next = index_.add(std::move(*made));
    unsynced_->addFolder();
    known_ = {next.file->number(), static_cast<std::uint32_t>(next.end)};
    return page_->setTail(known_) ? Result<void>() : Result<void>(lostPage());
}

Result<void> DiskStore::synchronize() {
    {
        const MutexLock lock(mutex_);
        if (auto opened = open(); !opened) return opened;
    }
    auto result = unsynced_->sync();
    if (result) return result;
    const MutexLock lock(mutex_);
    Segment* const last = index_.last();
    if (last && unsynced_->isLost(last->file->path())) last->isSealed = true;  // what comes now may be synced
    return result;
}

DiskLimits DiskStore::limits() const {
    const MutexLock lock(mutex_);
    return limits_;
}

Result<void> DiskStore::changeLimits(const std::function<void(DiskLimits&)>& change) {
    const MutexLock lock(mutex_);
    change(limits_);
    segmentSize_ =
        limits_.cost == 0 ? kLargestSegment : std::clamp(limits_.cost / 8, kSmallestSegment, kLargestSegment);
    if (auto opened = openToChange(); !opened) return opened;
    const PageLock page(*this);
    if (page.result()) holdLimits(0);
    return page.result();
}

Result<DiskStatistics> DiskStore::statistics() {
    const MutexLock lock(mutex_);
    if (auto opened = openAndFollow(); !opened) return Error(opened.error());
    if ((limits_.age > 0 || isOver()) && page_->isWritable()) {
        const PageLock page(*this);
        if (page.result()) holdLimits(0);
    }
    return DiskStatistics{hits_,
                          misses_,
                          evictions_,
                          index_.liveCount(),
                          index_.liveCost(),
                          index_.liveBytes() + index_.deadBytes()};
}

}  // namespace kx::disk
