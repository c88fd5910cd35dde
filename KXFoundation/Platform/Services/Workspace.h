// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Foundation/NSURL.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

/// The port to the programs of the desktop. Any thread.
class KX_EXPORT Workspace {
  public:
    virtual ~Workspace() = default;

    /// Has the program that is registered for the address's scheme open it. Returns at once; what comes of it
    /// is not reported, but for one log line if nothing on this machine can open addresses. An address
    /// without a scheme opens nothing, and one given just before the process exits may stay unopened.
    virtual void openURL(const NSURL& address) = 0;

    static PortSlot<Workspace>& slot();
    static std::shared_ptr<Workspace> makeDefault();
};

}  // namespace kx
