// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Services/Workspace.h>

namespace kx {

/// The adapter: the desktop portal where it answers, else the desktop's own opener (xdg-open, looked for in
/// PATH). One address after the other, on a queue of its own.
class KX_EXPORT DesktopWorkspace final : public Workspace {
  public:
    DesktopWorkspace();

    void openURL(const NSURL& address) override;

  private:
    std::shared_ptr<DispatchQueue> queue_;
};

}  // namespace kx
