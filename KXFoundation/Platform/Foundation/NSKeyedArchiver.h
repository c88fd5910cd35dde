// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// Turns a value into the bytes of a keyed archive (docs/formats/keyed-archive.md), from which
/// NSKeyedUnarchiver makes an equal one: nulls, numbers, texts, data, dates, arrays, dictionaries, and
/// objects of classes that implement NSSecureCoding. One object named twice stays one object; objects may
/// refer to each other in circles. Texts come back byte for byte, also those that are no UTF-8.
class KX_EXPORT NSKeyedArchiver {
  public:
    NSKeyedArchiver() = delete;

    /// Gives Unsupported for a uid and for an object whose class has no NSSecureCoding, TooLarge for what is
    /// nested deeper than Value::kMaxDepth or has more than 16,777,216 elements in one container with
    /// everything in it. What an encodeWithCoder throws passes through. Any thread, if the objects allow it.
    [[nodiscard]] static Result<std::string> archivedDataWithRootObject(const Value& root);
};

}  // namespace kx
