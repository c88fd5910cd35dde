// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Foundation/NSCoder.h>

namespace kx {

namespace {

Value rectangle(NSRect rect) {
    ArrayBuilder numbers;
    for (const double number : {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height})
        numbers.add(number);
    return numbers.build();
}

}  // namespace

void NSCoder::encode(std::string_view key, Value value) {
    archive_ = DictionaryBuilder(archive_).set(key, std::move(value)).build();
}

void NSCoder::encode(std::string_view key, NSRect rect) {
    encode(key, rectangle(rect));
}

bool NSCoder::contains(std::string_view key) const {
    const auto members = archive_.members();
    const auto found = std::ranges::lower_bound(members, key, {}, &Value::Member::first);
    return found != members.end() && found->first == key;
}

Value NSCoder::decode(std::string_view key) const {
    return archive_[key];
}

std::optional<std::string> NSCoder::decodeString(std::string_view key) const {
    const auto text = archive_[key].asString();
    if (!text) return std::nullopt;
    return std::string(*text);
}

std::optional<std::int64_t> NSCoder::decodeInteger(std::string_view key) const {
    return archive_[key].asInteger();
}

std::optional<double> NSCoder::decodeReal(std::string_view key) const {
    return archive_[key].asReal();
}

std::optional<bool> NSCoder::decodeBoolean(std::string_view key) const {
    return archive_[key].asBoolean();
}

std::optional<NSRect> NSCoder::decodeRect(std::string_view key) const {
    const auto items = archive_[key].elements();
    if (items.size() != 4) return std::nullopt;
    double numbers[4];
    for (std::size_t i = 0; i < 4; ++i) {
        const auto number = items[i].asReal();
        if (!number) return std::nullopt;
        numbers[i] = *number;
    }
    return NSRect(numbers[0], numbers[1], numbers[2], numbers[3]);
}

}  // namespace kx
