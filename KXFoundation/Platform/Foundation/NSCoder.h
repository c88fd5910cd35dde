// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// What an object is archived into and made from again: a dictionary of values by key. Decoding never fails:
/// a missing key or a value of another type gives std::nullopt, and the object keeps its default. Not
/// thread-safe.
class KX_EXPORT NSCoder {
  public:
    /// A coder to encode into.
    NSCoder() = default;
    /// A coder to decode from; anything but a dictionary holds no keys.
    explicit NSCoder(Value archive) : archive_(std::move(archive)) {}

    void encode(std::string_view key, Value value);
    void encode(std::string_view key, NSRect rect);

    [[nodiscard]] bool contains(std::string_view key) const;
    [[nodiscard]] Value decode(std::string_view key) const;
    [[nodiscard]] std::optional<std::string> decodeString(std::string_view key) const;
    [[nodiscard]] std::optional<std::int64_t> decodeInteger(std::string_view key) const;
    [[nodiscard]] std::optional<double> decodeReal(std::string_view key) const;
    [[nodiscard]] std::optional<bool> decodeBoolean(std::string_view key) const;
    [[nodiscard]] std::optional<NSRect> decodeRect(std::string_view key) const;

    /// Everything encoded so far, as a dictionary.
    [[nodiscard]] const Value& archive() const noexcept { return archive_; }

  private:
    Value archive_;
};

}  // namespace kx
