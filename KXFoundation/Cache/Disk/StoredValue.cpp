// SPDX-License-Identifier: MIT

#include <KXFoundation/Cache/Disk/StoredValue.h>
#include <KXFoundation/Platform/Foundation/NSKeyedArchiver.h>
#include <KXFoundation/Platform/Foundation/NSKeyedUnarchiver.h>

namespace kx::disk {

namespace {

Form formOf(Value::Type type) noexcept {
    switch (type) {
        case Value::Type::Boolean:
            return Form::Boolean;
        case Value::Type::Integer:
            return Form::Integer;
        case Value::Type::Real:
            return Form::Real;
        case Value::Type::Date:
            return Form::Date;
        case Value::Type::String:
            return Form::String;
        case Value::Type::Data:
            return Form::Data;
        default:
            return Form::Archive;
    }
}

std::uint64_t bitsOf(const Value& value) noexcept {
    if (const auto boolean = value.asBoolean()) return *boolean ? 1 : 0;
    if (const auto integer = value.asInteger()) return static_cast<std::uint64_t>(*integer);
    if (const auto date = value.asDate()) return std::bit_cast<std::uint64_t>(*date);
    return std::bit_cast<std::uint64_t>(value.asReal().value_or(0));
}

}  // namespace

Result<StoredValue> StoredValue::of(Value value) {
    if (value.isNull()) return Error{ErrorKind::Unsupported, 0, "no value to store"};
    const Form form = formOf(value.type());
    StoredValue stored(form, std::move(value));
    if (form == Form::Archive) {
        auto archive = NSKeyedArchiver::archivedDataWithRootObject(stored.value_);
        if (!archive) return std::move(archive).error();
        stored.archive_ = std::move(*archive);
    } else if (form < Form::String) {
        const std::uint64_t bits = bitsOf(stored.value_);
        std::memcpy(stored.scalar_.data(), &bits, sizeof bits);
    }
    return stored;
}

std::span<const std::byte> StoredValue::payload() const noexcept {
    if (form_ == Form::Archive) return std::as_bytes(std::span(archive_));
    if (const auto data = value_.asData()) return *data;
    if (const auto text = value_.asString()) return std::as_bytes(std::span(*text));
    return scalar_;
}

Result<Value> valueOf(Form form, std::span<const std::byte> payload) {
    const std::string_view text(reinterpret_cast<const char*>(payload.data()), payload.size());
    if (form == Form::String) return Value(text);
    if (form == Form::Archive) return NSKeyedUnarchiver::unarchivedObject(payload);
    if (payload.size() != 8) return Error{ErrorKind::Corrupt, 0, "a number of another size"};
    const auto bits = readStruct<std::uint64_t>(payload.data());
    switch (form) {
        case Form::Boolean:
            return Value(bits != 0);
        case Form::Integer:
            return Value(static_cast<std::int64_t>(bits));
        case Form::Real:
            return Value(std::bit_cast<double>(bits));
        case Form::Date:
            return Value::date(std::bit_cast<double>(bits));
        default:
            return Error{ErrorKind::Corrupt, 0, "an entry that holds no value"};
    }
}

}  // namespace kx::disk
