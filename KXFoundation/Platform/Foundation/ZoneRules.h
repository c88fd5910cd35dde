// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// A zone's offsets from UTC over all of time, found in a few nanoseconds: cctz reads the zone file, after
/// that a look-up is one step into a table and mostly one comparison. Seconds are counted from 1970-01-01
/// UTC, local ones as if the wall clock showed UTC. Immutable; any thread. Private to Platform.
class KX_EXPORT ZoneRules {
  public:
    /// The offset in seconds east of UTC from a moment on, up to the next one's.
    struct Span {
        std::int64_t from;
        std::int32_t offset;
    };

    /// The instants that a local time may mean. All are equal, but where the clocks change.
    struct Instants {
        std::int64_t before;  ///< by the offset before the change
        std::int64_t after;   ///< by the offset after it
        std::int64_t change;

        /// The clocks go past this time: `before` shows as much later as the clocks jump.
        [[nodiscard]] bool isSkipped() const noexcept { return before > after; }
    };

    /// One offset for all time.
    explicit ZoneRules(std::int32_t offset);
    /// At least one span; `from` ascends, and the first one's counts as the beginning of time. If the rules
    /// repeat, what the last 400 years of the table say goes on for ever.
    ZoneRules(const std::vector<Span>& spans, bool repeats);

    /// The zone of that name in the system's zone files, none if there is none or it cannot be read. An
    /// absolute path is read as such.
    [[nodiscard]] static std::shared_ptr<const ZoneRules> load(const std::string& name);

    [[nodiscard]] std::int32_t offsetAt(std::int64_t utc) const noexcept {
        if (offsets_.size() == 1) return offsets_[0];
        return offsets_[spanAt(utc - periodsBeyondTable(utc))];
    }
    [[nodiscard]] Instants instantsAt(std::int64_t local) const noexcept;
    /// The time around a moment in which the clocks change twice at most.
    struct Surroundings {
        std::int64_t from, to;
        std::int32_t offset[3];       // in their order
        std::int64_t localChange[2];  // the first local times that the second and the third alone give

        /// The offset by which a local time means the earlier of its instants.
        [[nodiscard]] std::int32_t offsetAtLocal(std::int64_t local) const noexcept {
            return offset[(local >= localChange[0]) + (local >= localChange[1])];
        }
    };
    [[nodiscard]] Surroundings surroundingsOf(std::int64_t utc) const noexcept;

    /// No other rules of the process have it, also after these are gone; never 0.
    [[nodiscard]] std::uint64_t serial() const noexcept { return serial_; }

  private:
    [[nodiscard]] static std::uint64_t nextSerial() noexcept;
    void fillBuckets();
    [[nodiscard]] std::size_t spanAt(std::int64_t utc) const noexcept;
    [[nodiscard]] std::int64_t periodsBeyondTable(std::int64_t seconds) const noexcept;

    // Parallel, one entry per span.
    std::vector<std::int32_t> offsets_;
    std::vector<std::int64_t> from_;
    std::vector<std::int64_t> localFrom_;  // first local time that only the span's own offset gives
    std::vector<std::uint16_t> buckets_;   // the span in force where the bucket begins
    bool repeats_ = false;
    std::uint64_t serial_ = nextSerial();
};

}  // namespace kx
