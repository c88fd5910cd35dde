// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Cache/Disk/DiskIndex.h>

namespace kx::disk {

DiskIndex::Segment& DiskIndex::add(std::shared_ptr<DiskSegment> file) {
    return *segments_.emplace_back(std::make_unique<Segment>(Segment{std::move(file), {}, {}}));
}

void DiskIndex::apply(Segment& segment, const Record& record) {
    segment.records.push_back(record);
    segment.used.push_back(false);
    segment.end = record.end();
    logBytes_ += record.entrySize();
    if (record.form == Form::Clearing) return clearPlaces();
    if (const auto former = find(record.keyHash)) forget(*former);
    if (!holdsValue(record.form)) return;
    places_.set(record.keyHash, {&segment, segment.records.size() - 1});
    liveCost_ += record.payloadSize;
    liveBytes_ += record.entrySize();
}

std::optional<DiskIndex::Place> DiskIndex::find(std::uint64_t keyHash) const {
    const Place found = places_.find(keyHash);
    return found.segment ? std::optional(found) : std::nullopt;
}

bool DiskIndex::isLive(const Place& place) const {
    return find(place.record().keyHash) == place;
}

void DiskIndex::forget(const Place& place) {
    const Record& record = place.record();
    liveCost_ -= record.payloadSize;
    liveBytes_ -= record.entrySize();
    places_.erase(record.keyHash);
}

std::optional<DiskIndex::Place> DiskIndex::oldest() {
    while (!segments_.empty()) {
        Segment& first = *segments_.front();
        if (first.head < first.records.size()) return Place{&first, first.head};
        if (segments_.size() == 1) break;
        dropFirstSegment();
    }
    return std::nullopt;
}

void DiskIndex::dropOldest() {
    const auto place = oldest();
    if (!place) return;
    if (isLive(*place)) forget(*place);
    logBytes_ -= place->record().entrySize();
    ++place->segment->head;
}

void DiskIndex::dropBefore(Position head) {
    const auto isBefore = [&](const Place& place) {
        return Position{place.segment->file->number(), place.record().offset} < head;
    };
    for (auto place = oldest(); place && isBefore(*place); place = oldest()) dropOldest();
}

Position DiskIndex::head() {
    if (const auto place = oldest()) return {place->segment->file->number(), place->record().offset};
    const Segment* const segment = last();
    return segment ? Position{segment->file->number(), static_cast<std::uint32_t>(segment->end)} : Position();
}

void DiskIndex::dropFirstSegment() {
    emptied_.push_back(segments_.front()->file->path());
    segments_.pop_front();
}

void DiskIndex::clearPlaces() {
    places_.clear();
    liveCost_ = liveBytes_ = 0;
}

void DiskIndex::clear() {
    clearPlaces();
    segments_.clear();
    emptied_.clear();
    logBytes_ = 0;
}

}  // namespace kx::disk
