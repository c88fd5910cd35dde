// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <charconv>

#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

struct Value::Payload {
    std::atomic<std::uint32_t> count{1};
};
struct Value::StringPayload : Payload {
    explicit StringPayload(std::string t) : text(std::move(t)) {}
    std::string text;
};
struct Value::DataPayload : Payload {
    explicit DataPayload(std::vector<std::byte> b) : bytes(std::move(b)) {}
    std::vector<std::byte> bytes;
};
struct Value::ArrayPayload : Payload {
    explicit ArrayPayload(std::vector<Value> e) : elements(std::move(e)) {}
    std::vector<Value> elements;
};
struct Value::DictionaryPayload : Payload {
    explicit DictionaryPayload(std::vector<Member> m) : members(std::move(m)) {}
    std::vector<Member> members;
};
struct Value::ObjectPayload : Payload {
    explicit ObjectPayload(std::shared_ptr<NSObject> o) : object(std::move(o)) {}
    std::shared_ptr<NSObject> object;
};

static_assert(sizeof(Value) == 16);

Value::Value(std::string_view text) : Value(Type::String, new StringPayload(std::string(text))) {}
Value::Value(std::string&& text) : Value(Type::String, new StringPayload(std::move(text))) {}
Value::Value(std::shared_ptr<NSObject> object) {
    if (!object) return;
    type_ = Type::Object;
    bits_.payload = new ObjectPayload(std::move(object));
}

Value Value::date(double secondsSince2001) noexcept {
    Value value(secondsSince2001);
    value.type_ = Type::Date;
    return value;
}

Value Value::uid(std::uint32_t number) noexcept {
    Value value;
    value.type_ = Type::Uid;
    value.bits_.uid = number;
    return value;
}

Value Value::data(std::vector<std::byte> bytes) {
    return {Type::Data, new DataPayload(std::move(bytes))};
}

Value Value::data(std::span<const std::byte> bytes) {
    return data(std::vector<std::byte>(bytes.begin(), bytes.end()));
}

template <class P>
const P& Value::payload() const noexcept {
    return static_cast<const P&>(*bits_.payload);
}

void Value::retain() const noexcept {
    bits_.payload->count.fetch_add(1, std::memory_order_relaxed);
}

void Value::release() noexcept {
    if (bits_.payload->count.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    switch (type_) {
        case Type::String:
            delete static_cast<StringPayload*>(bits_.payload);
            break;
        case Type::Data:
            delete static_cast<DataPayload*>(bits_.payload);
            break;
        case Type::Array:
            delete static_cast<ArrayPayload*>(bits_.payload);
            break;
        case Type::Dictionary:
            delete static_cast<DictionaryPayload*>(bits_.payload);
            break;
        case Type::Object:
            delete static_cast<ObjectPayload*>(bits_.payload);
            break;
        default:
            break;
    }
}

std::optional<double> Value::asReal() const noexcept {
    if (type_ == Type::Integer) return static_cast<double>(bits_.integer);
    if (type_ != Type::Real) return std::nullopt;
    return bits_.real;
}

std::optional<double> Value::asDate() const noexcept {
    if (type_ != Type::Date) return std::nullopt;
    return bits_.real;
}

std::optional<std::uint32_t> Value::asUid() const noexcept {
    if (type_ != Type::Uid) return std::nullopt;
    return bits_.uid;
}

std::optional<std::string_view> Value::asString() const noexcept {
    if (type_ != Type::String) return std::nullopt;
    return payload<StringPayload>().text;
}

std::optional<std::span<const std::byte>> Value::asData() const noexcept {
    if (type_ != Type::Data) return std::nullopt;
    return payload<DataPayload>().bytes;
}

std::shared_ptr<NSObject> Value::asObject() const noexcept {
    return type_ == Type::Object ? payload<ObjectPayload>().object : nullptr;
}

std::span<const Value> Value::elements() const noexcept {
    if (type_ != Type::Array) return {};
    return payload<ArrayPayload>().elements;
}

std::span<const Value::Member> Value::members() const noexcept {
    if (type_ != Type::Dictionary) return {};
    return payload<DictionaryPayload>().members;
}

const Value& Value::operator[](std::string_view key) const noexcept {
    static const Value kNull;
    const auto all = members();
    const auto found = std::lower_bound(all.begin(), all.end(), key,
                                        [](const Member& m, std::string_view k) { return m.first < k; });
    return found != all.end() && found->first == key ? found->second : kNull;
}

bool Value::operator==(const Value& other) const {
    if (type_ != other.type_) return false;
    if (isShared() && bits_.payload == other.bits_.payload) return true;
    switch (type_) {
        case Type::Null:
            return true;
        case Type::Boolean:
            return bits_.boolean == other.bits_.boolean;
        case Type::Integer:
            return bits_.integer == other.bits_.integer;
        case Type::Real:
        case Type::Date:
            return bits_.real == other.bits_.real;
        case Type::Uid:
            return bits_.uid == other.bits_.uid;
        case Type::String:
            return asString() == other.asString();
        case Type::Data:
            return std::ranges::equal(*asData(), *other.asData());
        case Type::Array:
            return std::ranges::equal(elements(), other.elements());
        case Type::Dictionary:
            return std::ranges::equal(members(), other.members());
        case Type::Object:
            return asObject()->isEqual(*other.asObject());
    }
    return false;
}

void Value::describe(std::string& text, std::size_t depth) const {
    constexpr std::size_t kLongest = 200;
    if (text.size() > kLongest || depth > kMaxDepth) {
        if (!text.ends_with("…")) text += "…";
        return;
    }
    std::array<char, 32> digits;
    const auto number = [&](auto n) {
        text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), n).ptr);
    };
    switch (type_) {
        case Type::Null:
            text += "null";
            break;
        case Type::Boolean:
            text += bits_.boolean ? "true" : "false";
            break;
        case Type::Integer:
            number(bits_.integer);
            break;
        case Type::Real:
            number(bits_.real);
            break;
        case Type::Date:
            number(bits_.real), text += " s since 2001";
            break;
        case Type::Uid:
            text += "uid ", number(bits_.uid);
            break;
        case Type::String:
            text.append("\"").append(asString()->substr(0, kLongest)).append("\"");
            break;
        case Type::Data:
            number(asData()->size()), text += " bytes";
            break;
        case Type::Object:
            text += asObject()->description();
            break;
        case Type::Array: {
            const char* separator = "[";
            for (const Value& element : elements()) {
                text += std::exchange(separator, ", ");
                element.describe(text, depth + 1);
                if (text.size() > kLongest) break;
            }
            text += elements().empty() ? "[]" : "]";
            break;
        }
        case Type::Dictionary: {
            const char* separator = "{";
            for (const auto& [key, value] : members()) {
                text.append(std::exchange(separator, ", ")).append(key).append(": ");
                value.describe(text, depth + 1);
                if (text.size() > kLongest) break;
            }
            text += members().empty() ? "{}" : "}";
            break;
        }
    }
}

std::string Value::description() const {
    std::string text;
    describe(text, 0);
    return text;
}

ArrayBuilder& ArrayBuilder::add(Value value) {
    elements_.push_back(std::move(value));
    return *this;
}

Value ArrayBuilder::build() {
    return {Value::Type::Array, new Value::ArrayPayload(std::move(elements_))};
}

DictionaryBuilder::DictionaryBuilder(const Value& dictionary)
    : members_(dictionary.members().begin(), dictionary.members().end()) {}

DictionaryBuilder& DictionaryBuilder::set(std::string_view key, Value value) {
    members_.emplace_back(key, std::move(value));
    return *this;
}

DictionaryBuilder& DictionaryBuilder::remove(std::string_view key) {
    std::erase_if(members_, [&](const Value::Member& member) { return member.first == key; });
    return *this;
}

Value DictionaryBuilder::build() {
    std::ranges::stable_sort(members_, {}, &Value::Member::first);
    // Keep the last of equal keys: unique() keeps the first, so it runs from the back.
    const auto firstKept = std::unique(members_.rbegin(), members_.rend(),
                                       [](const auto& a, const auto& b) { return a.first == b.first; });
    members_.erase(members_.begin(), firstKept.base());
    return {Value::Type::Dictionary, new Value::DictionaryPayload(std::move(members_))};
}

}  // namespace kx
