// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Views/NSResponder.h>

namespace kx {

class NSView;

/// Makes a view at first need and looks after it. A window that has one (NSWindow::setContentViewController)
/// shows its view as its content. Main thread.
class KX_EXPORT NSViewController : public Subclass<NSViewController, NSResponder> {
  public:
    /// Loads the view if there is none yet.
    [[nodiscard]] std::shared_ptr<NSView> view();
    /// Absent lets the next view() load one.
    void setView(std::shared_ptr<NSView> view) { view_ = std::move(view); }
    [[nodiscard]] bool isViewLoaded() const noexcept { return view_ != nullptr; }

    [[nodiscard]] const std::string& title() const noexcept { return title_; }
    void setTitle(std::string_view title) { title_ = title; }

    /// Makes the view and gives it to setView(); a plain one unless a subclass says otherwise.
    virtual void loadView();
    /// Called once after loadView().
    virtual void viewDidLoad() {}

    bool init() { return Super::init(); }

  protected:
    NSViewController() = default;

  private:
    std::shared_ptr<NSView> view_;
    std::string title_;
};

}  // namespace kx
