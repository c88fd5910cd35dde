// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>

#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>

/// What is known of a view on one axis while constraints are solved. Private to Views.
namespace kx {

enum class LayoutTerm : std::uint8_t { Start, Middle, End, Length };

[[nodiscard]] constexpr bool isLength(NSLayoutAttribute attribute) {
    return attribute == NSLayoutAttribute::Width || attribute == NSLayoutAttribute::Height;
}

/// 0 across, 1 down.
[[nodiscard]] constexpr std::size_t axisOf(NSLayoutAttribute attribute) {
    using enum NSLayoutAttribute;
    return attribute == Top || attribute == Bottom || attribute == CenterY || attribute == Height;
}

[[nodiscard]] constexpr LayoutTerm termOf(NSLayoutAttribute attribute, bool isMirrored) {
    using enum NSLayoutAttribute;
    switch (attribute) {
        case Left:
        case Top:
            return LayoutTerm::Start;
        case Right:
        case Bottom:
            return LayoutTerm::End;
        case Leading:
            return isMirrored ? LayoutTerm::End : LayoutTerm::Start;
        case Trailing:
            return isMirrored ? LayoutTerm::Start : LayoutTerm::End;
        case CenterX:
        case CenterY:
            return LayoutTerm::Middle;
        case Width:
        case Height:
            break;
    }
    return LayoutTerm::Length;
}

/// Any two of start, middle, end and length give the other two.
class LayoutAxis {
  public:
    [[nodiscard]] bool knows(LayoutTerm term) const { return values_[index(term)].has_value(); }
    [[nodiscard]] double operator[](LayoutTerm term) const { return *values_[index(term)]; }

    /// For a term that is not known yet.
    void learn(LayoutTerm term, double value) {
        values_[index(term)] = value;
        if (knows(LayoutTerm::Length)) {
            deriveFromLength();
        } else {
            deriveLength();
        }
    }

  private:
    static constexpr std::size_t index(LayoutTerm term) { return static_cast<std::size_t>(term); }
    /// How much of the length lies before a line.
    static constexpr std::array<double, 3> kShare{0, 0.5, 1};

    void deriveFromLength() {
        for (std::size_t line = 0; line < kShare.size(); ++line) {
            if (values_[line]) return setLines(*values_[line] - kShare[line] * (*this)[LayoutTerm::Length]);
        }
    }
    void deriveLength() {
        for (std::size_t a = 0; a < kShare.size(); ++a) {
            for (std::size_t b = a + 1; b < kShare.size(); ++b) {
                if (!values_[a] || !values_[b]) continue;
                values_[index(LayoutTerm::Length)] = (*values_[b] - *values_[a]) / (kShare[b] - kShare[a]);
                return deriveFromLength();
            }
        }
    }
    void setLines(double start) {
        for (std::size_t line = 0; line < kShare.size(); ++line) {
            if (!values_[line]) values_[line] = start + kShare[line] * (*this)[LayoutTerm::Length];
        }
    }

    std::array<std::optional<double>, 4> values_;
};

}  // namespace kx
