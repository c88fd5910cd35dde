// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/ViewConstraints.h>

namespace kx {

namespace {

double part(const NSPoint& point, std::size_t axis) {
    return axis == 0 ? point.x : point.y;
}
double part(const NSSize& size, std::size_t axis) {
    return axis == 0 ? size.width : size.height;
}

}  // namespace

ViewConstraints::~ViewConstraints() {
    for (const auto& constraint : constraints_) constraint->holder_ = nullptr;
}

void ViewConstraints::add(std::shared_ptr<NSLayoutConstraint> constraint) {
    constraint->holder_ = &holder_;
    constraints_.push_back(std::move(constraint));
    isGathered_ = false;
    holder_.setNeedsLayout();
}

void ViewConstraints::remove(NSLayoutConstraint& constraint) {
    constraint.holder_ = nullptr;
    std::erase_if(constraints_, [&](const auto& other) { return other.get() == &constraint; });
    isGathered_ = false;
    holder_.setNeedsLayout();
}

void ViewConstraints::removeAcross(const NSView& leaving) {
    const auto reachesInto = [&](const std::shared_ptr<NSView>& item) {
        return item && item->isDescendantOf(leaving);
    };
    const auto removed = std::erase_if(constraints_, [&](const auto& constraint) {
        if (!reachesInto(constraint->firstItem()) && !reachesInto(constraint->secondItem())) return false;
        constraint->holder_ = nullptr;
        return true;
    });
    if (removed > 0) isGathered_ = false;
}

void ViewConstraints::changed(const NSView& view) {
    if (std::ranges::none_of(places_, [&](const Place& place) { return place.view == &view; })) return;
    isGathered_ = false;
    holder_.setNeedsLayout();
}

// Gathering

void ViewConstraints::gather() {
    if (std::exchange(isGathered_, true)) return;
    places_.clear();
    links_.clear();
    places_.push_back({&holder_, nullptr, kNone, true, std::nullopt, {}});
    for (const auto& constraint : constraints_) {
        const auto first = constraint->firstItem();
        const auto second = constraint->secondItem();
        if (!first || (constraint->hasSecond_ && !second)) continue;
        const bool isMirrored =
            first->userInterfaceLayoutDirection() == NSUserInterfaceLayoutDirection::RightToLeft;
        Link link{constraint, sideOf(*first, constraint->firstAttribute_, isMirrored), {}, 1, false};
        if (second) link.second = sideOf(*second, constraint->secondAttribute_, isMirrored);
        const auto isDirected = [](NSLayoutAttribute attribute) {
            return attribute == NSLayoutAttribute::Leading || attribute == NSLayoutAttribute::Trailing;
        };
        if (isMirrored && isDirected(constraint->firstAttribute_)) link.sign = -1;
        links_.push_back(std::move(link));
    }
}

std::size_t ViewConstraints::placeOf(NSView& view) {
    const auto found = std::ranges::find(places_, &view, &Place::view);
    if (found != places_.end()) return static_cast<std::size_t>(found - places_.begin());
    const std::size_t parent = placeOf(*view.superview_);
    places_.push_back({&view, nullptr, parent, true, std::nullopt, {}});
    return places_.size() - 1;
}

ViewConstraints::Side ViewConstraints::sideOf(NSView& view, NSLayoutAttribute attribute, bool isMirrored) {
    const std::size_t place = placeOf(view);
    places_[place].isGiven = place == 0 || view.translatesAutoresizingMaskIntoConstraints();
    return {place, axisOf(attribute), termOf(attribute, isMirrored)};
}

// Solving

/// Holds the views for one solution: those that tell their fitting size may take any of them out of the tree.
class ViewConstraints::Solving {
  public:
    explicit Solving(ViewConstraints& constraints) : constraints_(constraints) {
        constraints_.isSolving_ = true;
        for (Place& place : constraints_.places_) place.held = place.view->self();
    }
    ~Solving() {
        for (Place& place : constraints_.places_) place.held = nullptr;
        constraints_.isSolving_ = false;
    }
    Solving(const Solving&) = delete;
    Solving& operator=(const Solving&) = delete;

  private:
    ViewConstraints& constraints_;
};

void ViewConstraints::solve() {
    if (isSolving_) return;  // asked for by a view that tells its fitting size
    gather();
    const Solving solving(*this);
    forgetSolution();
    do {
        handOn();
    } while (takeFittingLength() || keepPresentPlace());
    moveViews();
}

void ViewConstraints::forgetSolution() {
    for (Place& place : places_) {
        for (std::size_t axis = 0; axis < 2; ++axis) {
            place.axes[axis] = LayoutAxis();
            if (place.isGiven)
                place.axes[axis].learn(LayoutTerm::Length, part(place.view->frame_.size, axis));
        }
    }
    for (LayoutAxis& axis : places_[0].axes) axis.learn(LayoutTerm::Start, 0);
    for (Link& link : links_) link.isDone = false;
}

/// Hands on what is known until nothing more follows. After each step it begins anew at the first
/// constraint, so that of several which disagree the latest finds both of its sides known.
void ViewConstraints::handOn() {
    placeGiven();
    for (std::size_t i = 0; i < links_.size();) {
        if (links_[i].isDone || !apply(links_[i])) {
            ++i;
            continue;
        }
        placeGiven();
        i = 0;
    }
}

/// Views with a frame of their own follow the view that they are in.
void ViewConstraints::placeGiven() {
    for (std::size_t i = 1; i < places_.size(); ++i) {
        Place& place = places_[i];
        for (std::size_t axis = 0; place.isGiven && axis < 2; ++axis) {
            const LayoutAxis& parent = places_[place.parent].axes[axis];
            if (place.axes[axis].knows(LayoutTerm::Start) || !parent.knows(LayoutTerm::Start)) continue;
            place.axes[axis].learn(LayoutTerm::Start,
                                   parent[LayoutTerm::Start] + part(place.view->frame_.origin, axis));
        }
    }
}

std::optional<double> ViewConstraints::valueOf(const Side& side) const {
    if (side.place == kNone) return 0;
    const LayoutAxis& axis = places_[side.place].axes[side.axis];
    return axis.knows(side.term) ? std::optional(axis[side.term]) : std::nullopt;
}

/// True if it has told something new.
bool ViewConstraints::apply(Link& link) {
    const auto first = valueOf(link.first);
    const auto second = valueOf(link.second);
    if (!first && !second) return false;
    link.isDone = true;
    const double constant = link.sign * link.constraint->constant_;
    if (!first) {
        places_[link.first.place].axes[link.first.axis].learn(link.first.term, *second + constant);
    } else if (!second) {
        places_[link.second.place].axes[link.second.axis].learn(link.second.term, *first - constant);
    } else {
        constexpr double kSame = 0.001;
        if (std::abs(*first - *second - constant) > kSame &&
            !std::exchange(link.constraint->conflictIsReported_, true))
            log(LogLevel::Warning, link.constraint->description() + " contradicts earlier ones; left out");
        return false;
    }
    return true;
}

/// For the first view whose width or height nothing tells; false if there is none.
bool ViewConstraints::takeFittingLength() {
    for (Place& place : places_) {
        for (std::size_t axis = 0; axis < 2; ++axis) {
            if (place.axes[axis].knows(LayoutTerm::Length)) continue;
            if (!place.fitting) place.fitting = place.view->fittingSize();
            place.view->followsContent_ = true;
            place.axes[axis].learn(LayoutTerm::Length, part(*place.fitting, axis));
            return true;
        }
    }
    return false;
}

/// For the first view of which nothing tells where it lies; false if there is none.
bool ViewConstraints::keepPresentPlace() {
    for (Place& place : places_) {
        for (std::size_t axis = 0; axis < 2; ++axis) {
            if (place.axes[axis].knows(LayoutTerm::Start)) continue;
            const double parent = places_[place.parent].axes[axis][LayoutTerm::Start];
            place.axes[axis].learn(LayoutTerm::Start, parent + part(place.view->frame_.origin, axis));
            return true;
        }
    }
    return false;
}

void ViewConstraints::moveViews() {
    for (const Place& place : places_) {
        if (place.isGiven) continue;
        const Place& parent = places_[place.parent];
        const auto value = [&](std::size_t axis, LayoutTerm term) { return place.axes[axis][term]; };
        const auto origin = [&](std::size_t axis) {
            return value(axis, LayoutTerm::Start) - parent.axes[axis][LayoutTerm::Start];
        };
        place.view->setFrame(
            {origin(0), origin(1), value(0, LayoutTerm::Length), value(1, LayoutTerm::Length)});
    }
}

}  // namespace kx
