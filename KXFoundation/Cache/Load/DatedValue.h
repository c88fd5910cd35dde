// SPDX-License-Identifier: MIT
#pragma once

#include <limits>
#include <utility>

#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// A value and when it was set, in seconds since 1970. Private to Cache.
struct DatedValue {
    static constexpr double kUnknown = -std::numeric_limits<double>::infinity();
    Value value;
    double setAt = kUnknown;
};

/// How a value that was loaded lies in the memory store: it carries its date along, and leaves with it. On
/// disk the value lies plain, and the store's own date is asked for. Private to Cache.
class KXLoadedValue : public Subclass<KXLoadedValue, NSObject> {
  public:
    bool init(DatedValue dated) {
        dated_ = std::move(dated);
        return NSObject::init();
    }
    [[nodiscard]] const DatedValue& dated() const noexcept { return dated_; }

  private:
    DatedValue dated_;
};

/// As it goes into the memory store. What has no date goes plain.
[[nodiscard]] inline Value storedInMemory(const DatedValue& dated) {
    if (dated.setAt == DatedValue::kUnknown) return dated.value;
    return Value(std::shared_ptr<NSObject>(make<KXLoadedValue>(dated)));
}

/// What came out of the memory store.
[[nodiscard]] inline DatedValue fromMemory(Value stored) {
    if (stored.type() != Value::Type::Object) return {std::move(stored)};
    if (const auto loaded = objectCast<KXLoadedValue>(stored.asObject())) return loaded->dated();
    return {std::move(stored)};
}

}  // namespace kx
