// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Views/NSGestureRecognizer.h>

namespace kx {

/// A click: the mouse goes down and up over the view.
///
///     view->addGestureRecognizer(NSClickGestureRecognizer::initWithTarget(self(), &MyView::clicked));
class KX_EXPORT NSClickGestureRecognizer : public Subclass<NSClickGestureRecognizer, NSGestureRecognizer> {
  public:
    /// Calls the target's operation, virtual ones as the target's class has them. The target is held weakly.
    template <class T, class Target>
    [[nodiscard]] static std::shared_ptr<NSClickGestureRecognizer> initWithTarget(
        const std::shared_ptr<Target>& target, void (T::*action)()) {
        auto made = make<NSClickGestureRecognizer>();
        made->setAction([weak = std::weak_ptr<T>(target), action] {
            if (const auto held = weak.lock()) ((*held).*action)();
        });
        return made;
    }

    void touchDidEnd(const NSTouch& touch) override;

  protected:
    NSClickGestureRecognizer() = default;
};

}  // namespace kx
