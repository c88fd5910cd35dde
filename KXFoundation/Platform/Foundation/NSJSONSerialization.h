// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// JSON as RFC 8259 has it. No instances; any thread.
class KX_EXPORT NSJSONSerialization {
  public:
    NSJSONSerialization() = delete;

    /// The array or object that the text is. Corrupt for any other text: broken JSON, invalid UTF-8, a number
    /// beyond double, a single value; TooLarge if it is nested deeper than Value::kMaxDepth. Whole numbers
    /// that fit become integers, all others reals; of two equal keys the later one stays.
    static Result<Value> JSONObjectWithData(std::string_view text);
};

}  // namespace kx
