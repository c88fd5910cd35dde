// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>

#include <KXFoundation/Cache/Disk/DiskFormat.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx::disk {

/// A value as the payload of an entry. Texts and data are their own bytes, numbers eight, everything else is
/// a keyed archive. Private to Cache.
class StoredValue {
  public:
    /// Unsupported for null and for what no archive takes. What an object's own encoding throws passes
    /// through.
    [[nodiscard]] static Result<StoredValue> of(Value value);

    [[nodiscard]] Form form() const noexcept { return form_; }
    /// Valid as long as this object lives and stays where it is.
    [[nodiscard]] std::span<const std::byte> payload() const noexcept;

  private:
    StoredValue(Form form, Value value) : form_(form), value_(std::move(value)) {}
    Form form_;
    Value value_;
    std::string archive_;
    std::array<std::byte, 8> scalar_{};
};

/// The value of such a payload; not for Form::Data, whose payload it is.
[[nodiscard]] Result<Value> valueOf(Form form, std::span<const std::byte> payload);

}  // namespace kx::disk
