// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

/// Property lists: strings, integers, reals, booleans, dates, data, uids, arrays and dictionaries as XML or
/// in the binary form "bplist00", read from hostile bytes straight into Value. Pure functions; any thread.
namespace kx {

/// The property list in the bytes, of either form. Gives
/// - Ended for bytes that stop early (none at all included), Corrupt for bytes that break their form,
/// - TooLarge beyond Value::kMaxDepth, for numbers that Value cannot hold, and for a binary list whose shared
/// parts
///   written out would be far longer than the list itself,
/// - Unsupported for sets and for XML in an encoding other than UTF-8, UTF-16, ISO-8859-1 and ASCII.
/// XML entities other than the predefined five and character references are Corrupt; nothing is ever fetched.
[[nodiscard]] KX_EXPORT Result<Value> readPropertyList(std::span<const std::byte> bytes);

/// The value as XML in UTF-8, indented, with sorted keys. Gives Unsupported for what XML cannot hold without
/// loss: control characters in a text, dates with a fraction of a second or outside the years 1 to 9999.
/// Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] KX_EXPORT Result<std::string> writeXmlPropertyList(const Value& value);

/// The value as "bplist00"; equal strings are written once. Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] KX_EXPORT Result<std::string> writeBinaryPropertyList(const Value& value);

/// Whether the writers take the value: no null and no object in it, no container deeper than
/// Value::kMaxDepth. They give Unsupported for any other.
[[nodiscard]] KX_EXPORT bool isPropertyList(const Value& value);

}  // namespace kx
