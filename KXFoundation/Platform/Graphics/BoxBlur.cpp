// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <KXFoundation/Platform/Graphics/BoxBlur.h>

namespace kx {

namespace {

constexpr int kPasses = 3;

/// The reach of each pass to either side: a box of 2 * reach + 1 pixels.
std::array<int, kPasses> reaches(double sigma) {
    const double variance = 12 * sigma * sigma;
    const int ideal = static_cast<int>(std::sqrt(variance / kPasses + 1));
    const int narrow = ideal % 2 == 0 ? ideal - 1 : ideal;
    const double narrowPasses =
        std::round((variance - kPasses * (narrow * narrow + 4 * narrow + 3)) / (-4.0 * narrow - 4));
    std::array<int, kPasses> answer;
    for (int pass = 0; pass < kPasses; ++pass)
        answer[static_cast<std::size_t>(pass)] = narrow / 2 + (pass >= narrowPasses);
    return answer;
}

/// One box blur along a line of pixels that lie `stride` apart, with a running sum.
void blurLine(std::uint8_t* pixels, std::vector<std::uint8_t>& copy, int count, std::ptrdiff_t stride,
              int reach) {
    for (int i = 0; i < count; ++i) copy[static_cast<std::size_t>(i)] = pixels[i * stride];
    const auto at = [&](int i) -> unsigned {
        return i < 0 || i >= count ? 0 : copy[static_cast<std::size_t>(i)];
    };
    const auto box = static_cast<unsigned>(2 * reach + 1);
    unsigned sum = 0;
    for (int i = -reach; i < reach; ++i) sum += at(i);
    for (int i = 0; i < count; ++i) {
        sum += at(i + reach);
        pixels[i * stride] = static_cast<std::uint8_t>((sum + box / 2) / box);
        sum -= at(i - reach);
    }
}

}  // namespace

int boxBlurReach(double sigma) {
    int sum = 0;
    for (const int reach : reaches(sigma)) sum += reach;
    return sum;
}

void boxBlur(std::span<std::uint8_t> plane, int width, int height, double sigma) {
    std::vector<std::uint8_t> copy(static_cast<std::size_t>(std::max(width, height)));
    for (const int reach : reaches(sigma)) {
        if (reach == 0) continue;
        for (int y = 0; y < height; ++y)
            blurLine(plane.data() + std::ptrdiff_t{y} * width, copy, width, 1, reach);
        for (int x = 0; x < width; ++x) blurLine(plane.data() + x, copy, height, width, reach);
    }
}

}  // namespace kx
