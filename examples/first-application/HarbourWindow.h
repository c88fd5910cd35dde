// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Cache/KXImageCache.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSImageView.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

/// A picture with its title, a button that saves, and one that goes on to the next language.
class HarbourWindow {
  public:
    HarbourWindow();

    std::shared_ptr<kx::NSWindow> window;
    std::shared_ptr<kx::NSTextField> title;
    std::shared_ptr<kx::NSImageView> picture;
    std::shared_ptr<kx::NSButton> save, language;

  private:
    void showPicture();

    std::shared_ptr<kx::KXImageCache> cache_;
};
