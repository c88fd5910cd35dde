// SPDX-License-Identifier: MIT

#include "golden/GoldenSheet.h"

#include <algorithm>
#include <cstdio>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>

#include "golden/PictureFile.h"

namespace kx::testing {

namespace {

constexpr std::uint32_t kGap = 8;

std::shared_ptr<NSBitmapImageRep> stacked(const std::vector<std::shared_ptr<NSBitmapImageRep>>& rows) {
    std::uint32_t wide = 0;
    std::uint32_t high = 0;
    for (const auto& row : rows) {
        wide = std::max(wide, row->pixelsWide());
        high += row->pixelsHigh() + kGap;
    }
    auto sheet = NSBitmapImageRep::bitmapWithPixels(wide, high);
    if (!sheet) return rows.front();
    const auto context = GraphicsContext::onBitmap(sheet);
    context->fill(context->clipBounds(), *NSColor::colorWithWhite(1, 1));
    double y = 0;
    for (const auto& row : rows) {
        context->drawBitmap(*row, {0, y, double(row->pixelsWide()), double(row->pixelsHigh())});
        y += row->pixelsHigh() + kGap;
    }
    return sheet;
}

}  // namespace

GoldenSheet& GoldenSheet::shared() {
    static auto* const sheet = new GoldenSheet;  // belongs to GoogleTest
    [[maybe_unused]] static const auto* const known = ::testing::AddGlobalTestEnvironment(sheet);
    return *sheet;
}

void GoldenSheet::add(const std::string& name, const NSBitmapImageRep& before, const NSBitmapImageRep& now,
                      Tolerance tolerance) {
    if (rows_.empty()) firstName_ = name;
    rows_.push_back(sideBySide(before, now, tolerance));
}

/// Named after its first picture: several of these programs may run at a time.
void GoldenSheet::TearDown() {
    if (rows_.empty()) return;
    const std::string path = KX_GOLDEN_SHEETS "differences-" + firstName_ + ".png";
    if (writePicture(*stacked(rows_), path))
        std::printf("old, new and what differs, side by side: %s\n", path.c_str());
}

namespace {
[[maybe_unused]] const GoldenSheet& known = GoldenSheet::shared();  // before the tests begin
}  // namespace

}  // namespace kx::testing
