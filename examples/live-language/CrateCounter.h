// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

/// A window that counts crates, and changes its language while it is shown.
class CrateCounter {
  public:
    CrateCounter();

    std::shared_ptr<kx::NSWindow> window;
    std::shared_ptr<kx::NSTextField> greeting, crates, name;
    std::shared_ptr<kx::NSButton> unload, language;

  private:
    void place(const std::shared_ptr<kx::NSView>& view, double top, double width);

    int count_ = 24;
};
