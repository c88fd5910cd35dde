// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

/// The two forms of a property list, told apart by readPropertyList. Private to Foundation.
namespace kx {

inline constexpr std::string_view kBinaryPropertyListMagic = "bplist00";

[[nodiscard]] Result<Value> readXmlPropertyList(std::span<const std::byte> bytes);
[[nodiscard]] Result<Value> readBinaryPropertyList(std::span<const std::byte> bytes);

[[nodiscard]] inline Error propertyListError(ErrorKind kind) {
    return {kind, 0, "property list"};
}

}  // namespace kx
