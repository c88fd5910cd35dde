// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/StringTableReader.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kx {

/// The texts of one `.strings` file: the file's own bytes, escapes resolved in place, and a hash table of
/// slices into them. Immutable; any thread.
class KX_EXPORT StringTable {
  public:
    /// Larger files are refused, which bounds what a hostile one can cost (some 600 MiB while it is read).
    static constexpr std::size_t kLargestFile = std::size_t{32} << 20;

    /// Reads the contents of a file; more than kLargestFile bytes count as none. Of two entries with one key
    /// the later one stays.
    explicit StringTable(std::string contents);
    StringTable(const StringTable&) = delete;
    StringTable& operator=(const StringTable&) = delete;

    /// Reads the file; the error if that fails. What is wrong with its contents gives one log line.
    [[nodiscard]] static Result<std::unique_ptr<const StringTable>> load(FileSystem& files,
                                                                         const std::string& path);

    /// The key's text, valid as long as the table; absent if it has none.
    [[nodiscard]] std::optional<std::string_view> lookUp(std::string_view key) const noexcept;

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] const StringTableFaults& faults() const noexcept { return faults_; }

  private:
    /// 26 bits reach through every text: UTF-16 grows by half at most when it becomes UTF-8.
    struct Slot {
        std::uint64_t keyOffset : 26 = 0;
        std::uint64_t keyLength : 26 = 0;
        std::uint64_t tag : 12 = 0;         // of the key's hash: spares most comparisons of unequal keys
        std::uint64_t textOffset : 26 = 0;  // 0 in a free slot, since a key comes before its text
        std::uint64_t textLength : 26 = 0;
    };
    static_assert(kLargestFile + kLargestFile / 2 < std::size_t{1} << 26);

    [[nodiscard]] std::uint64_t hash(std::string_view key) const noexcept;
    [[nodiscard]] std::size_t slotOf(std::string_view key, std::uint64_t hashed) const noexcept;
    void insert(const StringTableEntry& entry, std::uint64_t hashed);
    void grow();

    std::string text_;
    std::vector<Slot> slots_;  // open addressing, a power of two, two thirds full at most
    std::size_t size_ = 0;
    StringTableFaults faults_;
};

}  // namespace kx
