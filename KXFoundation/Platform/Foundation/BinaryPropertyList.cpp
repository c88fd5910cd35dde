// SPDX-License-Identifier: MIT

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Foundation/PropertyListForms.h>
#include <KXFoundation/Platform/Foundation/UnicodeText.h>
#include <KXFoundation/Platform/Runtime/BigEndian.h>

// Layout: the magic, the objects, the table of their offsets, and 32 bytes at the end:
//     6 unused | size of an offset | size of a reference | number of objects (8) | root (8) | place of the
//     table (8)
// All numbers are big-endian. An object is a marker byte, whose high half is its type and whose low half is
// its size (15: an integer object with the size follows), then its bytes; containers hold references into the
// table.
//
// A hostile list names millions of objects that are not there, refers in circles, or shares one container so
// often that it has no end when written out. So every count is held against the bytes that it needs before
// anything is allocated, an object is read once, and what each would weigh written out is summed and limited.

namespace kx {

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t kTrailerSize = 32;

class Reader {
  public:
    explicit Reader(Bytes bytes) : bytes_(bytes) {}

    Result<Value> read() {
        if (auto opened = readTrailer(); !opened) return std::move(opened).error();
        read_.resize(objectCount_);
        auto root = object(root_, 0);
        if (!root) return std::move(root).error();
        return (*root)->value;
    }

  private:
    /// An object that was read, or is being read further up.
    struct Object {
        enum class State : std::uint8_t { Unread, BeingRead, Read } state = State::Unread;
        std::uint32_t weight = 0;  // roughly its bytes when written out, everything shared repeated
        Value value;
    };
    using Found = Result<const Object*>;

    static Error corrupt() { return propertyListError(ErrorKind::Corrupt); }
    static Error ended() { return propertyListError(ErrorKind::Ended); }
    static Error tooLarge() { return propertyListError(ErrorKind::TooLarge); }

    Result<void> readTrailer() {
        const std::size_t magic = kBinaryPropertyListMagic.size();
        if (bytes_.size() < magic + 1 + kTrailerSize) return ended();
        if (!std::ranges::equal(bytes_.first(magic), std::as_bytes(std::span(kBinaryPropertyListMagic))))
            return corrupt();
        const Bytes trailer = bytes_.last(kTrailerSize);
        offsetSize_ = std::to_integer<std::size_t>(trailer[6]);
        referenceSize_ = std::to_integer<std::size_t>(trailer[7]);
        const std::uint64_t count = bigEndian(trailer.subspan(8, 8));
        const std::uint64_t root = bigEndian(trailer.subspan(16, 8));
        const std::uint64_t table = bigEndian(trailer.subspan(24, 8));
        const std::size_t end = bytes_.size() - kTrailerSize;
        const auto isSize = [](std::size_t size) { return size >= 1 && size <= 8; };
        if (!isSize(offsetSize_) || !isSize(referenceSize_) || table <= magic || table > end)
            return corrupt();
        if (count > (end - table) / offsetSize_ || count > table - magic || root >= count) return corrupt();
        objectCount_ = static_cast<std::size_t>(count);
        root_ = static_cast<std::size_t>(root);
        offsets_ = bytes_.subspan(static_cast<std::size_t>(table), objectCount_ * offsetSize_);
        objects_ = bytes_.first(static_cast<std::size_t>(table));
        heaviest_ = std::min<std::uint64_t>(bytes_.size() * 64 + (1 << 20),
                                            std::numeric_limits<std::uint32_t>::max());
        return {};
    }

    Found object(std::uint64_t index, std::size_t depth) {
        if (index >= read_.size()) return corrupt();
        Object& object = read_[static_cast<std::size_t>(index)];
        if (object.state == Object::State::Read) return &object;
        if (object.state == Object::State::BeingRead) return corrupt();  // it contains itself
        const std::uint64_t offset =
            bigEndian(offsets_.subspan(static_cast<std::size_t>(index) * offsetSize_, offsetSize_));
        if (offset < kBinaryPropertyListMagic.size() || offset >= objects_.size()) return corrupt();
        object.state = Object::State::BeingRead;
        Cursor cursor{objects_.subspan(static_cast<std::size_t>(offset))};
        std::uint64_t weight = 0;
        auto value = parse(cursor, depth, weight);
        if (!value) return std::move(value).error();
        if (weight > heaviest_) return tooLarge();
        object = {Object::State::Read, static_cast<std::uint32_t>(weight), std::move(*value)};
        return &object;
    }

    struct Cursor {
        Bytes rest;

        Result<Bytes> take(std::uint64_t size) {
            if (size > rest.size()) return ended();
            const Bytes taken = rest.first(static_cast<std::size_t>(size));
            rest = rest.subspan(static_cast<std::size_t>(size));
            return taken;
        }
    };

    Result<Value> parse(Cursor& cursor, std::size_t depth, std::uint64_t& weight) {
        auto marker = cursor.take(1);
        if (!marker) return std::move(marker).error();
        const auto type = std::to_integer<unsigned>((*marker)[0] >> 4);
        const auto low = std::to_integer<unsigned>((*marker)[0] & std::byte{15});
        weight = 1;
        switch (type) {
            case 0x0:
                return boolean(low);
            case 0x1:
                return integer(cursor, low);
            case 0x2:
                return real(cursor, low);
            case 0x3:
                return date(cursor, low);
            case 0x4:
                return withBytes(cursor, low, 1, weight,
                                 [](Bytes b) -> Result<Value> { return Value::data(b); });
            case 0x5:
                return withBytes(cursor, low, 1, weight, asciiText);
            case 0x6:
                return withBytes(cursor, low, 2, weight, utf16Text);
            case 0x8:
                return uid(cursor, low);
            case 0xA:
                return array(cursor, low, depth, weight);
            case 0xC:
                return propertyListError(ErrorKind::Unsupported);  // a set
            case 0xD:
                return dictionary(cursor, low, depth, weight);
            default:
                return corrupt();
        }
    }

    static Result<Value> boolean(unsigned low) {
        if (low != 8 && low != 9) return corrupt();
        return Value(low == 9);
    }

    /// 1, 2 and 4 bytes are unsigned, 8 are signed; 16 hold what 8 cannot, which is more than Value can.
    static Result<Value> integer(Cursor& cursor, unsigned low) {
        if (low > 4) return corrupt();
        auto bytes = cursor.take(std::uint64_t{1} << low);
        if (!bytes) return std::move(bytes).error();
        const auto number =
            static_cast<std::int64_t>(bigEndian(bytes->last(std::min<std::size_t>(8, bytes->size()))));
        if (low == 4 && bigEndian(bytes->first(8)) != (number < 0 ? ~std::uint64_t{0} : 0)) return tooLarge();
        return Value(number);
    }

    static Result<Value> real(Cursor& cursor, unsigned low) {
        if (low != 2 && low != 3) return corrupt();
        auto bytes = cursor.take(std::uint64_t{1} << low);
        if (!bytes) return std::move(bytes).error();
        if (low == 3) return Value(std::bit_cast<double>(bigEndian(*bytes)));
        return Value(
            static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(*bytes)))));
    }

    static Result<Value> date(Cursor& cursor, unsigned low) {
        if (low != 3) return corrupt();
        auto bytes = cursor.take(8);
        if (!bytes) return std::move(bytes).error();
        return Value::date(std::bit_cast<double>(bigEndian(*bytes)));
    }

    static Result<Value> uid(Cursor& cursor, unsigned low) {
        auto bytes = cursor.take(low + 1);
        if (!bytes) return std::move(bytes).error();
        const std::uint64_t number = bigEndian(*bytes);
        if (bytes->size() > 8 || number > std::numeric_limits<std::uint32_t>::max()) return tooLarge();
        return Value::uid(static_cast<std::uint32_t>(number));
    }

    static Result<std::uint64_t> count(Cursor& cursor, unsigned low) {
        if (low < 15) return std::uint64_t{low};
        auto marker = cursor.take(1);
        if (!marker) return std::move(marker).error();
        if (std::to_integer<unsigned>((*marker)[0] >> 4) != 1) return corrupt();
        auto number = integer(cursor, std::to_integer<unsigned>((*marker)[0] & std::byte{15}));
        if (!number) return std::move(number).error();
        if (*number->asInteger() < 0) return corrupt();
        return static_cast<std::uint64_t>(*number->asInteger());
    }

    /// The bytes of `low` (or more) things of `size` bytes each.
    static Result<Bytes> counted(Cursor& cursor, unsigned low, std::size_t size) {
        auto number = count(cursor, low);
        if (!number) return std::move(number).error();
        if (*number > cursor.rest.size() / size) return ended();
        return cursor.take(*number * size);
    }

    template <class Make>
    static Result<Value> withBytes(Cursor& cursor, unsigned low, std::size_t size, std::uint64_t& weight,
                                   Make make) {
        auto bytes = counted(cursor, low, size);
        if (!bytes) return std::move(bytes).error();
        weight += bytes->size();
        return make(*bytes);
    }

    static Result<Value> asciiText(Bytes bytes) {
        if (std::ranges::any_of(bytes, [](std::byte b) { return b > std::byte{0x7F}; })) return corrupt();
        return Value(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    }

    static Result<Value> utf16Text(Bytes bytes) {
        std::string text;
        const auto unit = [&](std::size_t at) {
            return static_cast<char32_t>(bigEndian(bytes.subspan(at, 2)));
        };
        for (std::size_t at = 0; at < bytes.size(); at += 2) {
            char32_t codePoint = unit(at);
            if ((codePoint & 0xF800) == 0xD800) {
                const char32_t low = at + 2 < bytes.size() ? unit(at + 2) : 0;
                if (codePoint >= 0xDC00 || (low & 0xFC00) != 0xDC00) return corrupt();
                codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (low - 0xDC00);
                at += 2;
            }
            appendCodePoint(text, codePoint);
        }
        return Value(std::move(text));
    }

    Found referenced(Bytes references, std::size_t index, std::size_t depth, std::uint64_t& weight) {
        auto found = object(bigEndian(references.subspan(index * referenceSize_, referenceSize_)), depth);
        if (!found) return found;
        weight += (*found)->weight;
        if (weight > heaviest_) return tooLarge();
        return found;
    }

    Result<Value> array(Cursor& cursor, unsigned low, std::size_t depth, std::uint64_t& weight) {
        if (depth >= Value::kMaxDepth) return tooLarge();
        auto references = counted(cursor, low, referenceSize_);
        if (!references) return std::move(references).error();
        ArrayBuilder builder;
        for (std::size_t i = 0; i < references->size() / referenceSize_; ++i) {
            auto item = referenced(*references, i, depth + 1, weight);
            if (!item) return std::move(item).error();
            builder.add((*item)->value);
        }
        return builder.build();
    }

    Result<Value> dictionary(Cursor& cursor, unsigned low, std::size_t depth, std::uint64_t& weight) {
        if (depth >= Value::kMaxDepth) return tooLarge();
        auto references = counted(cursor, low, 2 * referenceSize_);  // all keys, then all values
        if (!references) return std::move(references).error();
        const std::size_t size = references->size() / referenceSize_ / 2;
        DictionaryBuilder builder;
        for (std::size_t i = 0; i < size; ++i) {
            auto key = referenced(*references, i, depth + 1, weight);
            if (!key) return std::move(key).error();
            const auto name = (*key)->value.asString();
            if (!name) return corrupt();
            auto item = referenced(*references, size + i, depth + 1, weight);
            if (!item) return std::move(item).error();
            builder.set(*name, (*item)->value);
        }
        return builder.build();
    }

    Bytes bytes_;
    Bytes objects_;  // from the magic on
    Bytes offsets_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::size_t objectCount_ = 0;
    std::size_t root_ = 0;
    std::uint64_t heaviest_ = 0;
    std::vector<Object> read_;
};

}  // namespace

Result<Value> readBinaryPropertyList(Bytes bytes) {
    return Reader(bytes).read();
}

}  // namespace kx
