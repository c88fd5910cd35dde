// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSSecureCoding.h>
#include <KXFoundation/Platform/Runtime/Class.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// The platform's classes that Value stands for.
enum class ValueClass : std::uint8_t { NSNull, NSNumber, NSString, NSDate, NSData, NSArray, NSDictionary };

/// The class that an archive's root must have: one of the platform's own, or an object class, whose
/// subclasses will do too.
class ArchivedClass {
  public:
    ArchivedClass(ValueClass cls) noexcept : value_(cls) {}
    ArchivedClass(const Class& cls) noexcept : object_(&cls) {}

    /// nullptr for one of the platform's own, which valueClass() then names.
    [[nodiscard]] const Class* objectClass() const noexcept { return object_; }
    [[nodiscard]] ValueClass valueClass() const noexcept { return value_; }

  private:
    const Class* object_ = nullptr;
    ValueClass value_ = ValueClass::NSNull;
};

/// Makes values and objects from the bytes of a keyed archive, hostile ones included: objects only of classes
/// registered for it (registerSecureCoding) or of the very class asked for, no deeper than Value::kMaxDepth,
/// in memory that is in proportion to the archive.
class KX_EXPORT NSKeyedUnarchiver {
  public:
    NSKeyedUnarchiver() = delete;

    /// Looks at the class of the root first; of an archive with another one no object is made. Gives
    /// - Ended, Corrupt and TooLarge as readPropertyList does; Corrupt too for a property list in another
    ///   layout, a value that contains itself, and an object whose initWithCoder answers false,
    /// - Unsupported for a root of another class, an object of a class that is not registered, and a
    /// dictionary
    ///   whose keys are no texts.
    /// What an initWithCoder throws passes through. Any thread, if the classes allow it.
    [[nodiscard]] static Result<Value> unarchivedObjectOfClass(const ArchivedClass& cls,
                                                               std::span<const std::byte> archive);

    /// The same for a root of any class.
    [[nodiscard]] static Result<Value> unarchivedObject(std::span<const std::byte> archive);
};

}  // namespace kx
