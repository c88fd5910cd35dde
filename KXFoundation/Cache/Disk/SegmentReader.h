// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <KXFoundation/Cache/Disk/DiskSegment.h>

namespace kx::disk {

/// The entries of a part of a segment, in their order.
struct SegmentEntries {
    std::vector<Record> records;
    std::uint64_t end = 0;   ///< where the unbroken row of entries stops
    bool isDamaged = false;  ///< something before `known` was no entry and was skipped
};

/// The table at the end of a sealed segment; nothing if it is not sealed or its table is damaged. Reads the
/// table alone. Positions that lie outside of the file are never answered.
[[nodiscard]] Result<std::optional<SegmentEntries>> readFooter(DiskSegment& segment);

/// Walks from entry to entry, reading their headers and keys only, from `from` on as far as they follow one
/// another. Where that ends before `known`, up to which the segment is known to hold entries, the next entry
/// is looked for byte by byte.
[[nodiscard]] Result<SegmentEntries> walkEntries(DiskSegment& segment, std::uint64_t from,
                                                 std::uint64_t known);

}  // namespace kx::disk
