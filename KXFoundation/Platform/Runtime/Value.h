// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSObject;

/// One dynamic type for defaults, JSON, property lists, notification payloads, archives and cache entries.
/// 16 bytes: a scalar, or a pointer to an immutable payload that copies share. Copying never allocates; a
/// Value may be read from many threads at once. Arrays and dictionaries are made with the builders below.
class KX_EXPORT Value {
  public:
    enum class Type : std::uint8_t {
        Null,
        Boolean,
        Integer,
        Real,
        Date,
        Uid,
        String,
        Data,
        Array,
        Dictionary,
        Object
    };

    /// Readers of outside bytes refuse deeper nesting with ErrorKind::TooLarge.
    static constexpr std::size_t kMaxDepth = 512;

    Value() noexcept = default;
    Value(std::nullptr_t) noexcept {}
    template <std::same_as<bool> B>
    Value(B boolean) noexcept : type_(Type::Boolean), bits_{.boolean = boolean} {}
    template <std::integral I>
    requires(!std::same_as<I, bool> && sizeof(I) <= 8) Value(I integer)
    noexcept : type_(Type::Integer), bits_{.integer = static_cast<std::int64_t>(integer)} {}
    Value(double real) noexcept : type_(Type::Real), bits_{.real = real} {}
    Value(std::string_view text);
    Value(const std::string& text) : Value(std::string_view(text)) {}
    Value(const char* text) : Value(std::string_view(text)) {}
    Value(std::string&& text);
    /// An object, shared; absent gives null.
    Value(std::shared_ptr<NSObject> object);

    /// A point in time: seconds since 2001-01-01T00:00:00Z, negative before.
    [[nodiscard]] static Value date(double secondsSince2001) noexcept;
    /// A reference number inside a keyed archive.
    [[nodiscard]] static Value uid(std::uint32_t number) noexcept;
    [[nodiscard]] static Value data(std::vector<std::byte> bytes);
    [[nodiscard]] static Value data(std::span<const std::byte> bytes);

    Value(const Value& other) noexcept : type_(other.type_), bits_(other.bits_) {
        if (isShared()) retain();
    }
    Value(Value&& other) noexcept : type_(std::exchange(other.type_, Type::Null)), bits_(other.bits_) {}
    Value& operator=(Value other) noexcept {
        swap(other);
        return *this;
    }
    ~Value() {
        if (isShared()) release();
    }
    void swap(Value& other) noexcept {
        std::swap(type_, other.type_);
        std::swap(bits_, other.bits_);
    }

    /// Where the payload lies that copies share; null for a scalar.
    [[nodiscard]] const void* sharedPayload() const noexcept { return isShared() ? bits_.payload : nullptr; }

    [[nodiscard]] Type type() const noexcept { return type_; }
    [[nodiscard]] bool isNull() const noexcept { return type_ == Type::Null; }

    // The contents as the type asked for, std::nullopt if it is another type. Views and spans are valid as
    // long as some copy of this Value lives. Real also answers for an integer; nothing else is converted.
    [[nodiscard]] std::optional<bool> asBoolean() const noexcept {
        return type_ == Type::Boolean ? std::optional(bits_.boolean) : std::nullopt;
    }
    [[nodiscard]] std::optional<std::int64_t> asInteger() const noexcept {
        return type_ == Type::Integer ? std::optional(bits_.integer) : std::nullopt;
    }
    [[nodiscard]] std::optional<double> asReal() const noexcept;
    [[nodiscard]] std::optional<double> asDate() const noexcept;
    [[nodiscard]] std::optional<std::uint32_t> asUid() const noexcept;
    [[nodiscard]] std::optional<std::string_view> asString() const noexcept;
    [[nodiscard]] std::optional<std::span<const std::byte>> asData() const noexcept;
    [[nodiscard]] std::shared_ptr<NSObject> asObject() const noexcept;

    using Member = std::pair<std::string, Value>;
    /// The elements of an array; empty for any other type.
    [[nodiscard]] std::span<const Value> elements() const noexcept;
    /// The members of a dictionary, sorted by key; empty for any other type.
    [[nodiscard]] std::span<const Member> members() const noexcept;
    /// The dictionary's value for the key, null if it has none or this is no dictionary.
    [[nodiscard]] const Value& operator[](std::string_view key) const noexcept;

    /// Deep equality; an integer and a real are different, objects are compared by isEqual.
    [[nodiscard]] bool operator==(const Value& other) const;

    /// One line for a person, JSON-like, cut after about 200 characters.
    [[nodiscard]] std::string description() const;

  private:
    friend class ArrayBuilder;
    friend class DictionaryBuilder;
    struct Payload;
    struct StringPayload;
    struct DataPayload;
    struct ArrayPayload;
    struct DictionaryPayload;
    struct ObjectPayload;

    Value(Type type, Payload* payload) noexcept : type_(type), bits_{.payload = payload} {}
    [[nodiscard]] bool isShared() const noexcept { return type_ >= Type::String; }
    template <class P>
    const P& payload() const noexcept;
    void retain() const noexcept;
    void release() noexcept;
    void describe(std::string& text, std::size_t depth) const;

    union Bits {
        bool boolean;
        std::int64_t integer;
        double real;
        std::uint32_t uid;
        Payload* payload;
    };
    Type type_ = Type::Null;
    Bits bits_{.integer = 0};
};

/// Collects elements, then gives them away as one Value.
class KX_EXPORT ArrayBuilder {
  public:
    ArrayBuilder& add(Value value);
    void reserve(std::size_t count) { elements_.reserve(count); }
    [[nodiscard]] std::size_t size() const noexcept { return elements_.size(); }
    /// Leaves the builder empty.
    [[nodiscard]] Value build();

  private:
    std::vector<Value> elements_;
};

/// Collects members, then gives them away as one Value. Of two equal keys the later one stays.
class KX_EXPORT DictionaryBuilder {
  public:
    DictionaryBuilder() = default;
    /// Starts from an existing dictionary; from nothing if it is another type.
    explicit DictionaryBuilder(const Value& dictionary);
    /// A null value is a member too; use remove() to take one away.
    DictionaryBuilder& set(std::string_view key, Value value);
    DictionaryBuilder& remove(std::string_view key);
    /// Leaves the builder empty.
    [[nodiscard]] Value build();

  private:
    std::vector<Value::Member> members_;  // in the order of arrival; sorted by build()
};

}  // namespace kx
