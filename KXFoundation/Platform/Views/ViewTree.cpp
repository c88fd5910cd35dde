// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/NSGestureRecognizer.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/ViewConstraints.h>

/// How views come into and out of a tree and its window. Hooks run application code that may change the same
/// tree, so nothing found before a hook is trusted after it, and whoever is worked on is held.
namespace kx {

namespace {

/// None for an object that is just being destroyed.
template <class T>
std::shared_ptr<T> shared(T* object) {
    return object ? std::static_pointer_cast<T>(object->weak_from_this().lock()) : nullptr;
}

/// True for one scope.
class Mark {
  public:
    explicit Mark(bool& flag) : flag_(flag) { flag_ = true; }
    ~Mark() { flag_ = false; }
    Mark(const Mark&) = delete;
    Mark& operator=(const Mark&) = delete;

  private:
    bool& flag_;
};

}  // namespace

NSView::~NSView() {
    for (const auto& view : subviews_) view->superview_ = nullptr;
    for (const auto& recognizer : recognizers_) recognizer->view_ = nullptr;
    if (layer_) layer_->view_ = nullptr;
}

std::shared_ptr<NSView> NSView::superview() const {
    return shared(superview_);
}

NSWindow* NSView::rootWindow() const noexcept {
    const NSView* view = this;
    while (view->superview_) view = view->superview_;
    return view->window_;
}

std::shared_ptr<NSWindow> NSView::window() const {
    return shared(rootWindow());
}

std::shared_ptr<NSResponder> NSView::nextResponder() const {
    if (superview_) return superview();
    return shared(window_);
}

bool NSView::isDescendantOf(const NSView& ancestor) const noexcept {
    for (const NSView* view = this; view; view = view->superview_) {
        if (view == &ancestor) return true;
    }
    return false;
}

void NSView::addSubview(const std::shared_ptr<NSView>& given) {
    if (!given || given->moving_ || !allowsChange()) return;
    if (isDescendantOf(*given)) return callerError(className() + ": a view cannot be put into itself");
    const auto view = given;  // the argument may live in a list that changes now
    const auto held = self();
    {
        const Mark mark(view->moving_);
        view->viewWillMoveToSuperview(held);
        view->takeOut();
        if (const auto window = this->window()) view->willChangeWindow(window);
        if (isDescendantOf(*view)) return;  // a hook has put this view into the other one
        subviews_.push_back(view);
        view->superview_ = this;
    }
    view->invalidate(view->drawnExtent());
    view->markLayoutUpwards();
    view->viewDidMoveToSuperview();
    if (view->superview_ == this && window()) view->didChangeWindow();
    if (view->superview_ == this) didAddSubview(*view);
}

void NSView::removeFromSuperview() {
    if ((!superview_ && !window_) || moving_ || !allowsChange()) return;
    const auto held = self();
    {
        const Mark mark(moving_);
        viewWillMoveToSuperview(nullptr);
        takeOut();
    }
    if (!superview_) viewDidMoveToSuperview();
}

/// Out of the superview or the window, if there is one; the caller holds the view.
void NSView::takeOut() {
    const auto parent = superview();
    const auto window = this->window();
    if (window) willChangeWindow(nullptr);
    if (parent) parent->willRemoveSubview(*this);
    if (superview_) {
        invalidate(drawnExtent());
        dropConstraintsAcross();
        std::erase_if(superview_->subviews_, [&](const auto& view) { return view.get() == this; });
        superview_ = nullptr;
    } else if (window_) {
        detachFromWindow();
    }
    if (window) didChangeWindow();
}

/// As the content view; the window has none now, and its caller holds it.
void NSView::attachToWindow(NSWindow& window) {
    const auto held = self();
    {
        const Mark mark(moving_);
        takeOut();
        willChangeWindow(shared(&window));
        if (window.contentView_) return;  // a hook has given it another one
        window.contentView_ = held;
        window_ = &window;
    }
    invalidate(drawnExtent());
    didChangeWindow();
}

void NSView::detachFromWindow() {
    invalidate(drawnExtent());
    window_->contentView_ = nullptr;
    window_ = nullptr;
}

void NSView::willChangeWindow(const std::shared_ptr<NSWindow>& window) {
    viewWillMoveToWindow(window);
    const auto views = subviews_;
    for (const auto& view : views) view->willChangeWindow(window);
}

void NSView::didChangeWindow() {
    viewDidMoveToWindow();
    viewDidShowOrHide();
    const auto views = subviews_;
    for (const auto& view : views) view->didChangeWindow();
}

/// Of the view, of one that holds it, or of the window.
void NSView::didShowOrHide() {
    const auto held = self();
    viewDidShowOrHide();
    const auto views = subviews_;
    for (const auto& view : views) view->didShowOrHide();
}

// Layout

void NSView::setNeedsLayout() {
    if (!allowsChange()) return;
    const bool isNews = !std::exchange(needsLayout_, true);
    markLayoutUpwards();
    if (const NSWindow* window = rootWindow(); window && isNews) window->wakeLoop();
}

void NSView::markLayoutUpwards() noexcept {
    for (NSView* view = superview_; view && !view->subviewNeedsLayout_; view = view->superview_) {
        view->subviewNeedsLayout_ = true;
    }
}

void NSView::layoutSubtreeIfNeeded() {
    const auto held = self();
    if (std::exchange(needsLayout_, false)) {
        if (constraints_) constraints_->solve();
        layout();
    }
    if (!std::exchange(subviewNeedsLayout_, false)) return;
    const auto views = subviews_;
    for (const auto& view : views) {
        if (view->superview_ == this) view->layoutSubtreeIfNeeded();
    }
}

// Constraints

ViewConstraints& NSView::ensureConstraints() {
    if (!constraints_) constraints_ = std::make_shared<ViewConstraints>(*this);
    return *constraints_;
}

void NSView::dropConstraintsAcross() {
    for (const NSView* view = superview_; view; view = view->superview_) {
        if (view->constraints_) view->constraints_->removeAcross(*this);
    }
}

void NSView::invalidateIntrinsicContentSize() {
    if (!allowsChange()) return;
    for (const NSView* view = this; view; view = view->superview_) {
        if (view->constraints_) view->constraints_->changed(*this);
    }
}

/// Of the view or one that holds it: leading and trailing change sides in all that it holds.
void NSView::directionDidChange() {
    invalidateIntrinsicContentSize();
    for (const auto& view : subviews_) view->directionDidChange();
}

void NSView::setTranslatesAutoresizingMaskIntoConstraints(bool translates) {
    if (translates == placesItself_ || !allowsChange()) return;
    placesItself_ = translates;
    invalidateIntrinsicContentSize();
}

}  // namespace kx
