// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Graphics/Filters/ChannelMix.h>
#include <KXFoundation/Platform/Graphics/Filters/ColorControls.h>

namespace kx {

namespace {

constexpr double kLuma[3] = {0.0722, 0.7152, 0.2126};  // blue, green, red
constexpr int kMostBits = 14;

double held(double value, double least, double most, double otherwise) {
    return std::isnan(value) ? otherwise : std::clamp(value, least, most);
}

ChannelMix mixFor(ColorControls controls) {
    const double brightness = held(controls.brightness, -1, 1, 0);
    const double saturation = held(controls.saturation, 0, 2, 1);
    const double contrast = held(controls.contrast, 0, 4, 1);
    double weights[3][4];
    double largest = 0;
    for (int to = 0; to < 3; ++to) {
        for (int from = 0; from < 3; ++from)
            weights[to][from] = contrast * ((1 - saturation) * kLuma[from] + (to == from ? saturation : 0));
        // On premultiplied values 1 is alpha.
        weights[to][3] = contrast * (brightness - 0.5) + 0.5;
        for (const double weight : weights[to]) largest = std::max(largest, std::abs(weight));
    }
    ChannelMix mix{{}, kMostBits, saturation == 0};
    while (std::ldexp(largest, mix.bits) > INT16_MAX) --mix.bits;
    for (int to = 0; to < 3; ++to)
        for (int from = 0; from < 4; ++from)
            mix.weights[to][from] =
                static_cast<std::int16_t>(std::lround(std::ldexp(weights[to][from], mix.bits)));
    return mix;
}

}  // namespace

void applyColorControls(const NSBitmapImageRep& from, NSBitmapImageRep& to, ColorControls controls,
                        VectorSpeed speed) {
    if (from.pixelsWide() != to.pixelsWide() || from.pixelsHigh() != to.pixelsHigh()) return;
    mixPixelsAt(speed)(mixFor(controls), from.pixels().data(), from.pixels().size(), to.pixels().data());
}

}  // namespace kx
