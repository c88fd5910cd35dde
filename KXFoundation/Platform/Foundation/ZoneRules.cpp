// SPDX-License-Identifier: MIT

#include <algorithm>
#include <atomic>
#include <limits>

#include <KXFoundation/Platform/Foundation/CivilDate.h>
#include <KXFoundation/Platform/Foundation/ZoneRules.h>

namespace kx {

namespace {

constexpr std::int64_t kPeriod = kDaysPer400Years * kSecondsPerDay;
constexpr int kBucketBits = 23;  // 97 days: seldom two changes in one bucket
constexpr std::int64_t kLargestOffset = std::int64_t{48} * 3600;
constexpr std::int64_t kForEver = std::numeric_limits<std::int64_t>::max();

}  // namespace

ZoneRules::ZoneRules(std::int32_t offset) : ZoneRules({{0, offset}}, false) {}

ZoneRules::ZoneRules(const std::vector<Span>& spans, bool repeats) : repeats_(repeats && spans.size() > 1) {
    for (const Span& span : spans) {
        const bool isFirst = offsets_.empty();
        const std::int64_t former = isFirst ? 0 : offsets_.back();
        offsets_.push_back(span.offset);
        from_.push_back(isFirst ? std::numeric_limits<std::int64_t>::min() : span.from);
        // A skipped or repeated local time is the former span's.
        localFrom_.push_back(isFirst ? from_[0] : span.from + std::max<std::int64_t>(former, span.offset));
    }
    fillBuckets();
}

std::uint64_t ZoneRules::nextSerial() noexcept {
    static constinit std::atomic<std::uint64_t> last{0};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

void ZoneRules::fillBuckets() {
    if (from_.size() == 1) return;
    std::size_t span = 0;
    for (std::int64_t start = from_[1]; start <= from_.back(); start += std::int64_t{1} << kBucketBits) {
        while (span + 1 < from_.size() && from_[span + 1] <= start) ++span;
        buckets_.push_back(static_cast<std::uint16_t>(span));
    }
}

std::size_t ZoneRules::spanAt(std::int64_t utc) const noexcept {
    if (utc < from_[1]) return 0;
    const auto bucket = static_cast<std::size_t>((utc - from_[1]) >> kBucketBits);
    std::size_t span = bucket < buckets_.size() ? buckets_[bucket] : from_.size() - 1;
    const auto isOver = [&] { return span + 1 < from_.size() && from_[span + 1] <= utc; };
    span += isOver() ? 1 : 0;  // as often as not: no branch, which would be guessed wrong
    while (isOver()) ++span;
    return span;
}

std::int64_t ZoneRules::periodsBeyondTable(std::int64_t seconds) const noexcept {
    if (!repeats_ || seconds < from_.back()) return 0;
    return ((seconds - from_.back()) / kPeriod + 1) * kPeriod;
}

ZoneRules::Surroundings ZoneRules::surroundingsOf(std::int64_t utc) const noexcept {
    const std::size_t last = offsets_.size() - 1;
    const std::int64_t periods = last == 0 ? 0 : periodsBeyondTable(utc);
    const std::size_t span = last == 0 ? 0 : spanAt(utc - periods);
    const std::size_t former = span == 0 ? 0 : span - 1, next = std::min(span + 1, last);
    Surroundings around{from_[former] + periods,
                        kForEver,
                        {offsets_[former], offsets_[span], offsets_[next]},
                        {localFrom_[span] + periods, kForEver}};
    if (next != span) around.localChange[1] = localFrom_[next] + periods;
    // Where rules repeat, the table begins again somewhere inside its last span.
    if (next != last) around.to = from_[next + 1] + periods;
    if (next == last && repeats_) around.to = from_[last] + periods;
    return around;
}

ZoneRules::Instants ZoneRules::instantsAt(std::int64_t local) const noexcept {
    if (offsets_.size() == 1) return {local - offsets_[0], local - offsets_[0], local - offsets_[0]};
    // One period earlier than needed is as good, so a look near the end of the table never leaves it.
    const std::int64_t periods = periodsBeyondTable(local + kLargestOffset);
    const std::int64_t inTable = local - periods;
    std::size_t span = spanAt(inTable - kLargestOffset);
    while (span + 1 < from_.size() && localFrom_[span + 1] <= inTable) ++span;
    const std::int64_t before = local - offsets_[span];
    if (span + 1 == from_.size()) return {before, before, before};
    const std::int64_t change = from_[span + 1];
    if (inTable < change + std::min(offsets_[span], offsets_[span + 1])) return {before, before, before};
    return {before, local - offsets_[span + 1], change + periods};
}

}  // namespace kx
