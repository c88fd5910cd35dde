// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

#include "Page.h"
#include "ScrollArea.h"

namespace gallery {

/// The gallery's one window: a list of the pages at the side where lines begin, the chosen page beside it.
class Gallery {
  public:
    static constexpr double kWidth = 980;
    static constexpr double kHeight = 720;
    static constexpr double kSideWidth = 200;

    Gallery();
    ~Gallery();
    Gallery(const Gallery&) = delete;
    Gallery& operator=(const Gallery&) = delete;

    [[nodiscard]] const std::shared_ptr<kx::NSWindow>& window() const { return window_; }

    /// Shows the page of that name; false if there is none.
    bool show(std::string_view page);
    /// Takes up the page, size and look of the last time.
    void restore();
    /// Writes them to the user defaults.
    void remember() const;
    /// Makes side list and page anew before the next drawing, in the language of that moment.
    void rebuild();
    /// Does what a person would do on the page, once it has been drawn.
    void demonstrate() {
        if (page_) page_->demonstrate(*this);
    }

  private:
    class Root;
    class Window;
    void build(kx::NSView& root);
    void addSideList(kx::NSView& root);
    void addPage(kx::NSView& root);
    void revealFocus() const;
    [[nodiscard]] std::shared_ptr<kx::NSButton> lookButton() const;

    std::shared_ptr<kx::NSWindow> window_;
    std::shared_ptr<Root> root_;
    std::shared_ptr<ScrollArea> side_;
    std::shared_ptr<ScrollArea> shown_;  // the page
    std::size_t chosen_ = 0;
    std::unique_ptr<Page> page_;
};

}  // namespace gallery
