// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

/// A window with a greeting and a button that says it in the other language.
class Greeting {
  public:
    Greeting();

    std::shared_ptr<kx::NSWindow> window;
    std::shared_ptr<kx::NSTextField> label;
    std::shared_ptr<kx::NSButton> button;

  private:
    void makeControls();
};
