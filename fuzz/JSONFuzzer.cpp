// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSJSONSerialization.h>

namespace {

/// How deep a value is nested.
std::size_t depthOf(const kx::Value& value) {
    std::size_t below = 0;
    for (const kx::Value& element : value.elements()) below = std::max(below, depthOf(element));
    for (const auto& [key, member] : value.members()) below = std::max(below, depthOf(member));
    const bool isContainer =
        value.type() == kx::Value::Type::Array || value.type() == kx::Value::Type::Dictionary;
    return below + (isContainer ? 1 : 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto value =
        kx::NSJSONSerialization::JSONObjectWithData({reinterpret_cast<const char*>(data), size});
    if (!value) return 0;
    const std::size_t depth = depthOf(*value);
    if (depth == 0 || depth > kx::Value::kMaxDepth || depth > size) std::abort();
    return 0;
}
