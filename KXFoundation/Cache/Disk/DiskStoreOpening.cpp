// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <iterator>

#include <KXFoundation/Cache/Disk/DiskStore.h>
#include <KXFoundation/Cache/Disk/SegmentReader.h>
#include <KXFoundation/Platform/Runtime/Log.h>

// How a store comes to know its folder: once as a whole, then entry by entry behind other processes.

namespace kx::disk {

namespace {

constexpr auto kLookAgainAfter = std::chrono::seconds(1);

std::string headerPathIn(const std::string& folder) {
    return folder + "/header";
}

bool isUnreadable(const Error& error) noexcept {
    return error.kind == ErrorKind::Corrupt || error.kind == ErrorKind::Ended || error.systemError == EISDIR;
}

bool isGone(const Result<FileSystem::Info>& info) noexcept {
    return !info && info.error().kind == ErrorKind::Missing;
}

bool mayRefuseWritesOnly(const Error& error) noexcept {
    return error.kind == ErrorKind::Denied || error.kind == ErrorKind::Full;
}

}  // namespace

Result<void> DiskStore::open() {
    if (page_) return {};
    const auto now = clock_->now();
    if (whyClosed_ && now < lookAgainAt_) return *whyClosed_;
    lookAgainAt_ = now + kLookAgainAfter;
    whyClosed_ = std::nullopt;
    auto opened = openPage();
    if (!opened) {
        page_ = nullptr;
        index_.clear();
        whyClosed_ = opened.error();
    }
    return opened;
}

Result<void> DiskStore::openToChange() {
    static_cast<void>(leaveIfReplaced(Use::Change));
    whyClosed_ = std::nullopt;
    auto opened = openAndFollow();
    if (!opened || !isAtTheEnd()) return opened;
    leave();
    if (opened = open(); opened && isAtTheEnd()) return lostPage();
    return opened;
}

/// No log comes so far: the numbers are those of damage.
bool DiskStore::isAtTheEnd() const {
    const Segment* const last = index_.last();
    const bool isFarAhead = !last || last->file->number() < kLateSegment;
    return known_.segment >= (isFarAhead ? kLateSegment : kLastSegment);
}

Result<void> DiskStore::openAndFollow() {
    if (auto opened = open(); !opened) return opened;
    if (const auto ends = page_->ends()) return follow(*ends);
    leave();
    return open();
}

Error DiskStore::lostPage() const {
    return {ErrorKind::Corrupt, 0, headerPathIn(folder_)};
}

Result<void> DiskStore::openPage() {
    const std::string path = headerPathIn(folder_);
    if (auto made = makeDirectories(*files_, folder_); !made && made.error().kind != ErrorKind::Denied)
        return made;
    constexpr int kTries = 3;
    for (int i = 0; i < kTries; ++i) {
        auto page = HeaderPage::open(*files_, path, HeaderPage::Access::ReadWrite);
        if (!page) {
            Error why = std::move(page).error();
            if (!mayRefuseWritesOnly(why)) return why;
            page =
                HeaderPage::open(*files_, path, HeaderPage::Access::Read);  // reading may go on all the same
            if (!page) return why;
            logError("disk cache, opened for reading only", why);
        }
        page_ = std::move(*page);
        const auto isLoaded = loadIfKept();
        if (page_->isWritable()) page_->unlock();
        if (!isLoaded) return isLoaded.error();
        if (*isLoaded) return {};
    }
    return lostPage();
}

/// False where another page lies in the place of this one.
Result<bool> DiskStore::loadIfKept() {
    const auto numbers = segmentNumbers();
    if (!numbers) return numbers.error();
    if (page_->isWritable()) {
        auto isKept = keepPage(*numbers);
        if (!isKept || !*isKept) return isKept;
    }
    auto loaded = load(*numbers);
    return loaded ? Result<bool>(true) : Result<bool>(std::move(loaded).error());
}

/// Under the page's lock: whether it is the folder's. Puts another in its place where it is damaged: its tail
/// is so late with no segment near it, or no numbers come after it. What is set where there are segments so
/// late is never taken for the same damage.
Result<bool> DiskStore::keepPage(const std::vector<std::uint32_t>& numbers) {
    if (isPageReplaced()) return false;  // by another process, meanwhile
    const auto ends = page_->ends();
    std::uint32_t last = ends ? ends->tail.segment : 0;
    bool isFarAhead = true;
    const auto firstLate = std::ranges::lower_bound(numbers, kLateSegment);
    for (auto number = firstLate; number != numbers.end(); ++number) {
        if (!DiskSegment::open(files_, folder_, *number)) continue;
        last = std::max(last, *number);
        isFarAhead = false;
    }
    if (last < (isFarAhead ? kLateSegment : kLastSegment)) return true;
    logError("disk cache, header made anew", lostPage());
    for (auto number = firstLate; number != numbers.end(); ++number)
        (void)files_->remove(folder_ + "/" + DiskSegment::nameOf(*number));
    // Behind all files, some of which may be waiting for their removal.
    const std::uint32_t before = firstLate == numbers.begin() ? 0 : *std::prev(firstLate);
    auto made = HeaderPage::replace(*files_, headerPathIn(folder_), {before, 0});
    return made ? Result<bool>(false) : Result<bool>(std::move(made).error());
}

/// The folder's whole log, whatever the header page says of its end: after a power cut it may say too little
/// or too much.
Result<void> DiskStore::load(const std::vector<std::uint32_t>& numbers) {
    index_.clear();
    known_ = knownHead_ = {};
    const auto ends = page_->ends();
    if (!ends) return lostPage();
    const auto [head, tail] = *ends;
    for (const std::uint32_t number : numbers) {
        if (number >= head.segment) {
            if (auto done = loadSegment(number, tail); !done) return done;
        } else if (page_->isWritable()) {
            (void)files_->remove(folder_ + "/" + DiskSegment::nameOf(number));
        }
    }
    index_.dropBefore(head);
    if (Segment* last = index_.last()) {
        // After a power cut the page may tell of segments that never came to the disk; no new one takes their
        // places, which others may know.
        last->isSealed = last->isSealed || last->file->number() < tail.segment;
        known_ = {last->file->number(), static_cast<std::uint32_t>(last->end)};
    }
    known_ = std::max(known_, tail);
    if (!page_->isWritable()) return {};
    if (known_ > tail && !page_->setTail(known_)) return lostPage();
    publishHead(Dropped::ForGood);
    return {};
}

/// In their order.
Result<std::vector<std::uint32_t>> DiskStore::segmentNumbers() {
    auto names = files_->list(folder_);
    if (!names) return std::move(names).error();
    std::vector<std::uint32_t> numbers;
    for (const std::string& name : *names) {
        if (const auto number = DiskSegment::numberOf(name)) numbers.push_back(*number);
    }
    std::ranges::sort(numbers);
    return numbers;
}

Result<void> DiskStore::loadSegment(std::uint32_t number, Position tail) {
    auto opened = DiskSegment::open(files_, folder_, number);
    if (!opened) {
        const Error& why = opened.error();
        if (why.kind == ErrorKind::Missing) return {};
        if (!isUnreadable(why)) return why;
        // A process that was killed may have left the beginning of a next segment; all else is damage.
        if (number <= tail.segment) logError("disk cache, segment dropped", why);
        if (page_->isWritable()) (void)files_->remove(folder_ + "/" + DiskSegment::nameOf(number));
        return {};
    }
    DiskSegment& file = **opened;
    auto footer = readFooter(file);
    if (!footer) return std::move(footer).error();
    const bool isSealed = footer->has_value();
    const std::uint64_t known = number == tail.segment ? tail.offset : sizeof(SegmentHeader);
    auto entries = isSealed ? Result<SegmentEntries>(std::move(**footer))
                            : walkEntries(file, sizeof(SegmentHeader), known);
    if (!entries) return std::move(entries).error();
    if (Segment* before = index_.last()) {
        before->isSealed = true;
        before->file->close();
    }
    Segment& segment = index_.add(std::move(*opened));
    for (const Record& record : entries->records) index_.apply(segment, record);
    segment.isSealed = isSealed;
    return !isSealed && number >= tail.segment ? mendLast(entries->isDamaged) : Result<void>();
}

/// Cuts off what a killed process left behind the last entry, so that nothing of it can be taken for an entry
/// later. A segment that lost some of its own is written to no more.
Result<void> DiskStore::mendLast(bool isDamaged) {
    Segment& last = *index_.last();
    if (isDamaged) logError("disk cache", Error{ErrorKind::Corrupt, 0, last.file->path()});
    if (!page_->isWritable()) return {};
    if (isDamaged) {
        (void)last.file->seal(last.records, last.end);
        last.isSealed = true;
        return {};
    }
    auto size = last.file->size();
    if (!size) return std::move(size).error();
    last.isSealed = *size > last.end && !last.file->truncate(last.end);
    return {};
}

/// Reads what other processes have appended, and drops what they have dropped.
Result<void> DiskStore::replay(const HeaderPage::Ends& ends) {
    const auto [head, tail] = ends;
    const std::uint32_t first = std::max({known_.segment, head.segment, std::uint32_t{1}});
    using Numbers = std::vector<std::uint32_t>;
    auto numbers = first < tail.segment ? segmentNumbers() : Result<Numbers>(Numbers{tail.segment});
    if (!numbers) return std::move(numbers).error();
    for (const std::uint32_t number : *numbers) {
        if (number < first || number > tail.segment || tail <= known_) continue;
        if (auto done = replaySegment(number, tail); !done) return done;
    }
    known_ = std::max(known_, tail);
    if (head <= knownHead_) return {};
    knownHead_ = head;
    index_.dropBefore(head);
    static_cast<void>(index_.takeEmptied());  // whoever moved the head deletes them
    return {};
}

Result<void> DiskStore::replaySegment(std::uint32_t number, Position tail) {
    Segment* segment = index_.last();
    if (!segment || segment->file->number() < number) {
        auto opened = DiskSegment::open(files_, folder_, number);
        if (!opened && opened.error().kind == ErrorKind::Missing) return {};
        if (!opened && isUnreadable(opened.error())) {
            logError("disk cache, segment skipped", opened.error());
            return {};
        }
        if (!opened) return std::move(opened).error();
        if (segment) segment->isSealed = true;
        segment = &index_.add(std::move(*opened));
    }
    const bool isLast = number == tail.segment;
    auto entries = walkEntries(*segment->file, segment->end, isLast ? tail.offset : segment->end);
    if (!entries) return std::move(entries).error();
    for (const Record& record : entries->records) {
        if (!isLast || record.end() <= tail.offset) index_.apply(*segment, record);
    }
    segment->isSealed = segment->isSealed || !isLast || entries->isDamaged;
    if (!isLast) segment->file->close();
    return {};
}

/// What is not synced stays known: its segments may be there still.
void DiskStore::leave() {
    page_ = nullptr;
    index_.clear();
}

/// Somebody may have deleted the folder, or put another in its place; and what could be opened for reading
/// only may be writable by now. Looks once a second at most, and answers whether it has left.
bool DiskStore::leaveIfReplaced(Use use) {
    const auto now = clock_->now();
    if (!page_ || now < lookAgainAt_) return false;
    const bool leavesReadOnly = use == Use::Change;
    if (leavesReadOnly || page_->isWritable()) lookAgainAt_ = now + kLookAgainAfter;
    if (!isReplaced() && (page_->isWritable() || !leavesReadOnly)) return false;
    leave();
    return true;
}

bool DiskStore::isReplaced() {
    if (isPageReplaced()) return true;
    const Segment* const last = index_.last();  // what is written to a deleted file is lost
    return last && isGone(files_->info(last->file->path()));
}

bool DiskStore::isPageReplaced() {
    const auto header = files_->info(headerPathIn(folder_));
    return header ? header->identity != page_->identity() : isGone(header);
}

}  // namespace kx::disk
