// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

#include <KXFoundation/Platform/Runtime/Class.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// Holds an object's (or a class's) own recursive monitor for one scope: `const Monitor held(*view);`.
/// The object must outlive the scope. Any thread.
class KX_EXPORT Monitor {
  public:
    explicit Monitor(NSObject& object);
    explicit Monitor(Class& cls) : lock_(cls.monitor()) {}

  private:
    std::unique_lock<std::recursive_mutex> lock_;
};

}  // namespace kx
