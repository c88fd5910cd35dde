// SPDX-License-Identifier: MIT

// process/window-to-png/<who>: a program that makes a window with a label, a picture and a button, draws it
// off the screen and writes it as a PNG file; from its start to its end, the parent's clock. The picture is
// the same to the pixel in both; the toolkits' own look of label and button is not. The counter
// `peak_of_it` is our peak of resident memory over the other's.
#include <algorithm>
#include <cstdlib>

#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>

#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/Programs.h"

namespace {

constexpr const char* kWorkload = "process/window-to-png";
struct Part {
    std::uint32_t x, y, width, height;
};
constexpr Part kLabel{40, 16, 400, 28}, kPicture{40, 60, 400, 240}, kButton{180, 324, 120, 36};

using Bitmap = std::shared_ptr<kx::NSBitmapImageRep>;

std::string written(const char* who) {
    return std::string(KX_START_PROGRAMS "/window-") + who + ".png";
}
std::vector<std::string> call(const char* who) {
    return {std::string(KX_START_PROGRAMS "/start-window-") + who, KX_START_PICTURE, written(who)};
}

/// Its peak of resident memory in KiB; 0 if it fails.
double peakOf(const char* who) {
    return std::atof(peers::answerOf(call(who)).c_str());
}

Bitmap shownBy(const char* who) {
    const auto image = kx::NSImage::initWithContentsOfFile(written(who));
    return image ? image->bitmapAtScale(1) : nullptr;
}

bool areEqual(const kx::NSBitmapImageRep& a, const kx::NSBitmapImageRep& b, Part in) {
    for (std::uint32_t i = 0; i < in.width * in.height; ++i) {
        const std::uint32_t x = in.x + i % in.width, y = in.y + i / in.width;
        if (a.pixelAt(x, y) != b.pixelAt(x, y)) return false;
    }
    return true;
}

/// Whether there is anything but one colour.
bool showsSomething(const kx::NSBitmapImageRep& bitmap, Part in) {
    for (std::uint32_t i = 1; i < in.width * in.height; ++i) {
        if (bitmap.pixelAt(in.x + i % in.width, in.y + i / in.width) != bitmap.pixelAt(in.x, in.y))
            return true;
    }
    return false;
}

double peakRatio = 0;

[[maybe_unused]] const bool checked = [] {
    const double ours = peakOf("kx"), theirs = peakOf("qt");
    const Bitmap kx = shownBy("kx"), qt = shownBy("qt");
    const bool equal = ours > 0 && theirs > 0 && kx && qt && kx->pixelsWide() == qt->pixelsWide() &&
                       kx->pixelsHigh() == qt->pixelsHigh() && areEqual(*kx, *qt, kPicture);
    peers::checkEqualAnswers(equal, kWorkload);
    for (const Part& part : {kLabel, kPicture, kButton})
        peers::checkEqualAnswers(showsSomething(*kx, part) && showsSomething(*qt, part), kWorkload);
    peakRatio = ours / theirs;
    return true;
}();

void makeWindow(benchmark::State& state, const char* who) {
    peers::timeRuns(state, call(who));
    state.counters["peak_of_it"] = who == std::string("kx") ? peakRatio : 1;
}

[[maybe_unused]] const bool registered = [] {
    for (const char* who : {"kx", "qt"}) {
        benchmark::RegisterBenchmark((std::string(kWorkload) + "/" + who).c_str(), makeWindow, who)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace
