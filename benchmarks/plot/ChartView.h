// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <KXFoundation/Platform/Views/NSView.h>

namespace plot {

struct Bar {
    std::string who;
    double length = 0;  ///< in the unit of its group
    std::string text;   ///< behind the bar
    bool missed = false;
};

/// Contenders of one workload; the longest bar of a group fills the width.
struct Group {
    std::string title;
    std::vector<Bar> bars;
    std::vector<double> marks;  ///< across our bar: the most that it may be
};

struct Chart {
    std::string name;  ///< of the file
    std::string title;
    std::vector<Group> groups;
};

/// A chart of lying bars, each with its name before and its text behind it.
class ChartView : public kx::Subclass<ChartView, kx::NSView> {
  public:
    /// As high as the chart needs.
    bool init(Chart chart);
    void drawRect(kx::GraphicsContext& context, kx::NSRect dirtyRect) override;

  private:
    void drawGroup(kx::GraphicsContext& context, const Group& group, double top) const;

    Chart chart_;
};

}  // namespace plot
