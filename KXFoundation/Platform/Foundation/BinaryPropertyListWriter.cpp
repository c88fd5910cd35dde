// SPDX-License-Identifier: MIT

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include <KXFoundation/Platform/Foundation/PropertyList.h>
#include <KXFoundation/Platform/Foundation/PropertyListForms.h>
#include <KXFoundation/Platform/Foundation/UnicodeText.h>

namespace kx {

namespace {

std::size_t bytesFor(std::uint64_t number) {
    if (number < 1u << 8) return 1;
    if (number < 1u << 16) return 2;
    return number < std::uint64_t{1} << 32 ? 4 : 8;
}

void appendBigEndian(std::string& text, std::uint64_t number, std::size_t size) {
    for (std::size_t i = size; i-- > 0;) text.push_back(static_cast<char>(number >> (8 * i) & 0xFF));
}

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string utf16(std::string_view text) {
    std::string units;
    while (!text.empty()) {
        const char32_t c = takeCodePoint(text);
        if (c < 0x10000) {
            appendBigEndian(units, c, 2);
        } else {
            appendBigEndian(units, 0xD800 + ((c - 0x10000) >> 10), 2);
            appendBigEndian(units, 0xDC00 + ((c - 0x10000) & 0x3FF), 2);
        }
    }
    return units;
}

/// Numbers the objects in one walk, so that the size of a reference is known, then writes them in a second.
class Writer {
  public:
    std::string write(const Value& root) {
        number(root);
        referenceSize_ = bytesFor(objects_.size());
        text_ = kBinaryPropertyListMagic;
        std::vector<std::uint64_t> offsets;
        for (const Object& object : objects_) {
            offsets.push_back(text_.size());
            append(object);
        }
        const std::uint64_t table = text_.size();
        const std::size_t offsetSize = bytesFor(table);
        for (const std::uint64_t offset : offsets) appendBigEndian(text_, offset, offsetSize);
        text_.append(6, '\0');
        text_.push_back(static_cast<char>(offsetSize));
        text_.push_back(static_cast<char>(referenceSize_));
        appendBigEndian(text_, objects_.size(), 8);
        appendBigEndian(text_, 0, 8);
        appendBigEndian(text_, table, 8);
        return std::move(text_);
    }

  private:
    struct Object {
        const Value* value;  // nullptr: a text
        std::string_view string;
        std::vector<std::uint64_t> references;  // of a container; a dictionary's keys, then its values
    };

    std::uint64_t numberText(std::string_view string) {
        const auto [known, isNew] = texts_.try_emplace(string, objects_.size());
        if (isNew) objects_.push_back({nullptr, string, {}});
        return known->second;
    }

    std::uint64_t number(const Value& value) {
        if (const auto string = value.asString()) return numberText(*string);
        const std::uint64_t own = objects_.size();
        objects_.push_back({&value, {}, {}});
        std::vector<std::uint64_t> references;
        for (const Value& item : value.elements()) references.push_back(number(item));
        for (const auto& member : value.members()) references.push_back(numberText(member.first));
        for (const auto& member : value.members()) references.push_back(number(member.second));
        objects_[own].references = std::move(references);
        return own;
    }

    void append(const Object& object) {
        if (!object.value) return appendText(object.string);
        const Value& value = *object.value;
        switch (value.type()) {
            case Value::Type::Boolean:
                text_.push_back(*value.asBoolean() ? '\x09' : '\x08');
                break;
            case Value::Type::Integer:
                appendInteger(*value.asInteger());
                break;
            case Value::Type::Real:
                appendReal('\x23', *value.asReal());
                break;
            case Value::Type::Date:
                appendReal('\x33', *value.asDate());
                break;
            case Value::Type::Uid:
                text_.push_back('\x83');
                appendBigEndian(text_, *value.asUid(), 4);
                break;
            case Value::Type::Data:
                appendData(*value.asData());
                break;
            case Value::Type::Array:
                appendReferences('\xA0', value.elements().size(), object);
                break;
            case Value::Type::Dictionary:
                appendReferences('\xD0', value.members().size(), object);
                break;
            default:
                break;  // no other type in a property list
        }
    }

    void appendMarker(char type, std::uint64_t count) {
        text_.push_back(static_cast<char>(type | static_cast<char>(count < 15 ? count : 15)));
        if (count >= 15) appendInteger(static_cast<std::int64_t>(count));
    }

    void appendInteger(std::int64_t number) {
        const auto bits = static_cast<std::uint64_t>(number);
        const std::size_t size = number < 0 ? 8 : bytesFor(bits);
        text_.push_back(static_cast<char>(0x10 | std::countr_zero(size)));
        appendBigEndian(text_, bits, size);
    }

    void appendReal(char marker, double number) {
        text_.push_back(marker);
        appendBigEndian(text_, std::bit_cast<std::uint64_t>(number), 8);
    }

    void appendText(std::string_view string) {
        if (isAscii(string)) {
            appendMarker('\x50', string.size());
            text_ += string;
        } else {
            const std::string units = utf16(string);
            appendMarker('\x60', units.size() / 2);
            text_ += units;
        }
    }

    void appendData(std::span<const std::byte> bytes) {
        appendMarker('\x40', bytes.size());
        text_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }

    void appendReferences(char type, std::uint64_t count, const Object& object) {
        appendMarker(type, count);
        for (const std::uint64_t reference : object.references)
            appendBigEndian(text_, reference, referenceSize_);
    }

    std::vector<Object> objects_;
    std::unordered_map<std::string_view, std::uint64_t> texts_;
    std::size_t referenceSize_ = 1;
    std::string text_;
};

}  // namespace

Result<std::string> writeBinaryPropertyList(const Value& value) {
    if (!isPropertyList(value)) return propertyListError(ErrorKind::Unsupported);
    return Writer().write(value);
}

}  // namespace kx
