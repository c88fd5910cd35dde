// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <numbers>

#include <KXFoundation/Platform/Graphics/Resampling/ResampleTaps.h>

namespace kx {

namespace {

constexpr double kLobes = 3;
constexpr double kNothing = 1e-7;  // of a weight's peak: what rounding leaves at a window's ends

/// sinc(x) sinc(x / 3), with sin 3y written by sin y.
double lanczos3(double x) {
    if (std::abs(x) >= kLobes) return 0;
    if (std::abs(x) < kNothing) return 1;
    const double angle = std::numbers::pi * x / kLobes;
    const double third = std::sin(angle);
    return (3 - 4 * third * third) * third * third / (kLobes * angle * angle);
}

/// The weights of the source values around one target value; they add up to 1.
struct Window {
    std::uint32_t first;
    std::size_t start;  ///< in the list of all windows' weights
    std::size_t count;
};

class Windows {
  public:
    Windows(ResampleFilter filter, ResampleAxis axis)
        : isArea_(filter == ResampleFilter::Area),
          source_(double(axis.source) / axis.summed),
          step_(source_ / axis.extent) {
        windows_.reserve(axis.target);
        weights_.reserve(static_cast<std::size_t>(axis.target * (2 * reach() + 2)));
        for (std::uint32_t i = 0; i < axis.target; ++i) add((i + 0.5) * step_);
    }

    [[nodiscard]] std::span<const Window> all() const noexcept { return windows_; }
    [[nodiscard]] std::span<const double> weightsOf(const Window& window) const {
        return std::span(weights_).subspan(window.start, window.count);
    }
    [[nodiscard]] double largestWeight() const { return std::ranges::max(weights_); }
    [[nodiscard]] std::size_t largestCount() const {
        return std::ranges::max(windows_, {}, &Window::count).count;
    }

  private:
    /// How far the filter reaches to each side, in source values.
    [[nodiscard]] double reach() const {
        return std::min(isArea_ ? step_ / 2 : kLobes * std::max(step_, 1.0), source_);
    }
    /// How much of a value the source has: 1, but for a last sum of fewer.
    [[nodiscard]] double share(double index) const { return std::min(source_ - index, 1.0); }
    [[nodiscard]] double weight(double index, double centre) const {
        if (!isArea_) return lanczos3((index + share(index) / 2 - centre) / std::max(step_, 1.0));
        const double covered = std::min(index + 1, centre + step_ / 2) - std::max(index, centre - step_ / 2);
        return covered / std::min(step_, 1.0);
    }

    /// Values beyond the source's ends count as not there, so the others count the more.
    void add(double centre) {
        centre = std::min(centre, source_);  // beyond the end: its last values
        const double values = std::ceil(source_);
        double first = std::clamp(std::floor(centre - reach()), 0.0, values - 1);
        double end = std::clamp(std::ceil(centre + reach()), first + 1, values);
        // What rounding let in at the ends. Firsts never fall from one target value to the next.
        if (first > 0 && first + 1 < end && std::abs(weight(first, centre)) < kNothing) ++first;
        if (first + 1 < end && std::abs(weight(end - 1, centre)) < kNothing) --end;
        const std::size_t start = weights_.size();
        double sum = 0;
        for (double index = first; index < end; ++index) {
            weights_.push_back(weight(index, centre));
            sum += weights_.back() * share(index);
        }
        const std::span<double> added = std::span(weights_).subspan(start);
        for (double& weight : added) weight /= sum;
        windows_.push_back({static_cast<std::uint32_t>(first), start, added.size()});
    }

    bool isArea_;
    double source_;  // values
    double step_;    // of them to one target value
    std::vector<Window> windows_;
    std::vector<double> weights_;
};

int bitsFor(double largest, int most) {
    int bits = most;
    while (std::ldexp(largest, bits) > INT16_MAX - 1) --bits;
    return bits;
}

/// Rounds the running sum, so that the weights add up exactly and none is off by a whole unit.
void quantise(std::span<const double> weights, double one, std::int16_t* to) {
    double running = 0;
    long before = 0;
    for (const double weight : weights) {
        running += weight * one;
        const auto now = static_cast<long>(std::floor(running + 0.5));
        *to++ = static_cast<std::int16_t>(now - before);
        before = now;
    }
}

}  // namespace

ResampleTaps resampleTaps(ResampleFilter filter, ResampleAxis axis, int mostBits) {
    const Windows windows(filter, axis);
    ResampleTaps taps;
    taps.bits = bitsFor(windows.largestWeight() / axis.summed, mostBits);
    const double one = std::ldexp(1, taps.bits) / axis.summed;
    const std::size_t count = (windows.largestCount() + taps.kStep - 1) / taps.kStep * taps.kStep;
    taps.count = static_cast<std::uint32_t>(count);
    taps.weights.resize(axis.target * count);
    // A window that is cut short at the source's end is moved back: loops read `count` values of every one.
    const std::uint32_t lastFirst = axis.values() > taps.count ? axis.values() - taps.count : 0;
    std::int16_t* to = taps.weights.data();
    for (const Window& window : windows.all()) {
        const std::uint32_t first = std::min(window.first, lastFirst);
        taps.firsts.push_back(first);
        quantise(windows.weightsOf(window), one, to + (window.first - first));
        to += count;
    }
    return taps;
}

}  // namespace kx
