// SPDX-License-Identifier: MIT

// bench-plot CHARTS DIRECTORY: draws each chart that tools/performance_page.py wrote as DIRECTORY/<name>.png.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <KXFoundation/Platform/Foundation/NSJSONSerialization.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/OffscreenSurface.h>

#include "ChartView.h"

using namespace kx;

namespace {

std::string textOf(const Value& value) {
    return std::string(value.asString().value_or(""));
}

plot::Group groupOf(const Value& value) {
    plot::Group group{textOf(value["title"]), {}, {}};
    for (const Value& bar : value["bars"].elements()) {
        group.bars.push_back({textOf(bar["who"]), bar["length"].asReal().value_or(0), textOf(bar["text"]),
                              bar["missed"].asBoolean().value_or(false)});
    }
    for (const Value& mark : value["marks"].elements()) group.marks.push_back(mark.asReal().value_or(0));
    return group;
}

plot::Chart chartOf(const Value& value) {
    plot::Chart chart{textOf(value["name"]), textOf(value["title"]), {}};
    for (const Value& group : value["groups"].elements()) chart.groups.push_back(groupOf(group));
    return chart;
}

bool draw(const plot::Chart& chart, const std::string& path) {
    const auto view = make<plot::ChartView>(chart);
    const auto window = make<NSWindow>(view->frame());
    window->setContentView(view);
    window->orderFront();
    window->displayIfNeeded();
    const auto surface = std::dynamic_pointer_cast<OffscreenSurface>(window->surface());
    const auto png = surface->png();
    window->close();
    if (!png) return false;
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(png->data()), static_cast<std::streamsize>(png->size()));
    return static_cast<bool>(file.flush());
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: bench-plot CHARTS DIRECTORY\n");
        return 2;
    }
    std::ifstream file(arguments[1]);
    std::ostringstream text;
    text << file.rdbuf();
    const auto read = NSJSONSerialization::JSONObjectWithData(text.str());
    if (!read) {
        std::fprintf(stderr, "bench-plot: %s: %s\n", arguments[1], read.error().message().c_str());
        return 1;
    }
    const std::string directory = arguments[2];
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    WindowSystem::slot().replace(std::make_shared<OffscreenWindowSystem>());
    for (const Value& value : (*read)["charts"].elements()) {
        const plot::Chart chart = chartOf(value);
        const std::string path = directory + "/" + chart.name + ".png";
        if (!draw(chart, path)) {
            std::fprintf(stderr, "bench-plot: cannot write %s\n", path.c_str());
            return 1;
        }
        std::printf("%s\n", path.c_str());
    }
    return 0;
}
