// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Views/LayoutAxis.h>
#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>

namespace kx {

class NSView;

/// The active constraints between views in one view, and their solution. All lines are reckoned in that
/// view's coordinates. Private to Views.
///
/// What the constraints link is gathered once after every change of them; a solution is then a walk over
/// vectors that exist, and asks for no memory.
class ViewConstraints {
  public:
    explicit ViewConstraints(NSView& holder) : holder_(holder) {}
    ~ViewConstraints();
    ViewConstraints(const ViewConstraints&) = delete;
    ViewConstraints& operator=(const ViewConstraints&) = delete;

    void add(std::shared_ptr<NSLayoutConstraint> constraint);
    void remove(NSLayoutConstraint& constraint);
    /// Switches off those that reach into `leaving` from outside of it.
    void removeAcross(const NSView& leaving);

    /// The view's content asks for another size, or the view mirrors or is placed by other means now.
    void changed(const NSView& view);
    /// Places the views.
    void solve();

  private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    /// A view that a constraint names, or that holds one on the way to the holder.
    struct Place {
        NSView* view;
        std::shared_ptr<NSView> held;  // while there is a solution under way
        std::size_t parent;            // of its superview's place; those of superviews come first
        bool isGiven;                  // its frame is as it is
        std::optional<NSSize> fitting;
        LayoutAxis axes[2];
    };
    struct Side {
        std::size_t place = kNone;  // none: the constant alone
        std::size_t axis = 0;
        LayoutTerm term = LayoutTerm::Length;
    };
    struct Link {
        std::shared_ptr<NSLayoutConstraint> constraint;  // may be switched off while it is looked at
        Side first, second;
        double sign;  // of the constant
        bool isDone;
    };

    class Solving;

    void gather();
    std::size_t placeOf(NSView& view);
    [[nodiscard]] Side sideOf(NSView& view, NSLayoutAttribute attribute, bool isMirrored);

    void forgetSolution();
    void handOn();
    void placeGiven();
    [[nodiscard]] bool apply(Link& link);
    [[nodiscard]] std::optional<double> valueOf(const Side& side) const;
    [[nodiscard]] bool takeFittingLength();
    [[nodiscard]] bool keepPresentPlace();
    void moveViews();

    NSView& holder_;
    std::vector<std::shared_ptr<NSLayoutConstraint>> constraints_;
    bool isGathered_ = false;
    bool isSolving_ = false;
    std::vector<Place> places_;  // the holder's first
    std::vector<Link> links_;
};

}  // namespace kx
