// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace gallery {

/// While it lives, the user's settings, caches and pictures are those of an empty home directory of its own,
/// which goes with it: what is drawn for a picture leaves the user's own alone.
class TemporaryHome {
  public:
    /// Every other variable of the environment stays, or none does.
    enum class Others : unsigned char { Kept, Unset };
    explicit TemporaryHome(Others others);
    ~TemporaryHome();  // every queue is idle then
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

  private:
    class Variables;
    std::string path_;
    kx::ScopedPort<kx::Environment> variables_;
};

}  // namespace gallery
