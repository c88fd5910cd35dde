// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

/// Reads the `.strings` format: `"key" = "text";`, with `/* */` and `//` comments. Private to Foundation and
/// to the programs beside it.
namespace kx {

/// Both lie in the text that was read.
struct StringTableEntry {
    std::string_view key;
    std::string_view text;
};

struct StringTableFaults {
    std::size_t count = 0;
    std::size_t firstLine = 0;  ///< counted from 1
    const char* firstReason = "";
};

/// Told where each fault begins, in bytes from the start of the text, and what it is. Must not throw.
using TellStringTableFault = std::function<void(std::size_t offset, const char* reason)>;

/// The bytes of a file as UTF-8: a byte order mark, else the place of zero bytes, tells UTF-16 of either
/// order. What is no UTF-16 becomes a byte that is no UTF-8, so that it costs its entry alone. UTF-8 passes
/// unchecked.
[[nodiscard]] KX_EXPORT std::string stringTableText(std::string bytes);

/// Hands over the entries of the text, in its order, in one pass and with time linear in its length. Escapes
/// are resolved in place. A faulty entry is left out and reading goes on at the next one: behind it if its
/// end can be told, else on the line after the one that it begins on. The answer sums the faults up; `tell`
/// is for who wants each.
[[nodiscard]] KX_EXPORT StringTableFaults
readStringTable(std::string& text, const std::function<void(const StringTableEntry&)>& take,
                const TellStringTableFault& tell = {});

}  // namespace kx
