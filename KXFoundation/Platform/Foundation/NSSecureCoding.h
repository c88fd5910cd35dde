// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

class NSCoder;

/// What an object class does to be kept in archives:
///
///     class Harbour : public Subclass<Harbour, NSObject>, public NSSecureCoding {
///         void encodeWithCoder(NSCoder& coder) const override { coder.encode("berths", berths_); }
///         bool initWithCoder(NSCoder& coder) override {
///             berths_ = coder.decodeInteger("berths").value_or(0);
///             return init();
///         }
///     };
///     registerSecureCoding<Harbour>();   // once, before the first archive is read
class KX_EXPORT NSSecureCoding {
  public:
    virtual ~NSSecureCoding();

    virtual void encodeWithCoder(NSCoder& coder) const = 0;
    /// The initialiser for an object out of an archive, in place of init(). False gives up the whole archive.
    /// An object that refers back to this one has been given it before this runs, as has this one its own
    /// fellows on a circle: keep such a reference (weakly, as a rule), do not use it yet.
    virtual bool initWithCoder(NSCoder& coder) = 0;

  protected:
    NSSecureCoding() = default;
    NSSecureCoding(const NSSecureCoding&) = default;
    NSSecureCoding& operator=(const NSSecureCoding&) = default;
};

template <class T>
concept SecureCoding = std::derived_from<T, NSObject> && std::derived_from<T, NSSecureCoding>;

KX_EXPORT void registerSecureCodingClass(const Class& cls);
/// Private to Foundation.
[[nodiscard]] bool isSecureCodingClass(const Class& cls);

/// Lets archives make objects of this class, and of no subclass that is not registered too: bytes from
/// outside choose among registered classes only. Any thread, as often as one likes.
template <SecureCoding T>
void registerSecureCoding() {
    registerSecureCodingClass(T::classObject());
}

}  // namespace kx
