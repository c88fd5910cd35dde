// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSNotificationName.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// A named broadcast: its name, an optional sender and an optional payload, mostly a dictionary. A value;
/// observers get it by reference and may keep a copy, which then shares the sender and the payload.
class NSNotification {
  public:
    explicit NSNotification(const NSNotificationName& name, std::shared_ptr<NSObject> object = nullptr,
                            Value userInfo = {}) noexcept
        : name_(&name.interned()), object_(std::move(object)), userInfo_(std::move(userInfo)) {}

    [[nodiscard]] NSNotificationName name() const noexcept { return NSNotificationName(*name_); }
    /// The sender, absent if none was named.
    [[nodiscard]] const std::shared_ptr<NSObject>& object() const noexcept { return object_; }
    [[nodiscard]] const Value& userInfo() const noexcept { return userInfo_; }

  private:
    const NSNotificationName::Interned* name_;
    std::shared_ptr<NSObject> object_;
    Value userInfo_;
};

}  // namespace kx
