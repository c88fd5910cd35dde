// SPDX-License-Identifier: MIT

#include <algorithm>
#include <string_view>

#include <KXFoundation/Platform/Foundation/PropertyList.h>
#include <KXFoundation/Platform/Foundation/PropertyListForms.h>

namespace kx {

namespace {

bool fits(const Value& value, std::size_t depth) {
    const Value::Type type = value.type();
    if (type == Value::Type::Null || type == Value::Type::Object) return false;
    const bool isContainer = type == Value::Type::Array || type == Value::Type::Dictionary;
    if (isContainer && depth > Value::kMaxDepth) return false;
    const auto fitsBelow = [&](const Value& below) { return fits(below, depth + 1); };
    return std::ranges::all_of(value.elements(), fitsBelow) &&
           std::ranges::all_of(value.members(), fitsBelow, &Value::Member::second);
}

}  // namespace

Result<Value> readPropertyList(std::span<const std::byte> bytes) {
    if (bytes.empty()) return propertyListError(ErrorKind::Ended);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return text.starts_with("bplist") ? readBinaryPropertyList(bytes) : readXmlPropertyList(bytes);
}

bool isPropertyList(const Value& value) {
    return fits(value, 1);
}

}  // namespace kx
