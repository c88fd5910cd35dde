// SPDX-License-Identifier: MIT

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>

namespace kx {

namespace {
constinit std::atomic<std::uint64_t> limit{std::uint64_t{64} << 20};

/// Has the system back the whole pages of memory that is about to be written, in one call: one by one, as
/// they are first touched, they can cost more than all that is drawn on them. Where it knows no such call
/// they come so.
void backPages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) noexcept {
#ifdef MADV_POPULATE_WRITE
    static const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (start + page - 1) / page * page, end = (start + bytes) / page * page;
    if (end > first)
        ::madvise(static_cast<std::byte*>(memory) + (first - start), end - first, MADV_POPULATE_WRITE);
#endif
}

std::unique_ptr<std::uint32_t[]> clearPixels(std::size_t count) {
    constexpr std::size_t kWorthCalling = std::size_t{16} << 10;
    std::unique_ptr<std::uint32_t[]> pixels(new (std::nothrow) std::uint32_t[count]);
    if (!pixels) return nullptr;
    if (count >= kWorthCalling) backPages(pixels.get(), count * sizeof(std::uint32_t));
    std::fill_n(pixels.get(), count, 0U);
    return pixels;
}

}  // namespace

std::uint64_t NSBitmapImageRep::pixelLimit() noexcept {
    return limit.load(std::memory_order_relaxed);
}

void NSBitmapImageRep::setPixelLimit(std::uint64_t pixels) noexcept {
    limit.store(pixels, std::memory_order_relaxed);
}

bool NSBitmapImageRep::allows(std::uint64_t wide, std::uint64_t high) noexcept {
    return wide > 0 && high > 0 && wide <= kLongestSide && high <= kLongestSide &&
           wide * high <= pixelLimit();
}

bool NSBitmapImageRep::init(std::uint32_t wide, std::uint32_t high) {
    if (!Super::init() || !allows(wide, high)) return false;
    pixels_ = clearPixels(std::size_t{wide} * high);
    if (!pixels_) return false;
    wide_ = wide;
    high_ = high;
    return true;
}

std::shared_ptr<NSBitmapImageRep> NSBitmapImageRep::bitmapWithPixels(std::uint32_t wide, std::uint32_t high) {
    return make<NSBitmapImageRep>(wide, high);
}

std::shared_ptr<NSBitmapImageRep> NSBitmapImageRep::bitmapWithSize(NSSize points) {
    const auto cut = [](double side) {
        return side >= 1 && side < kLongestSide + 1.0 ? static_cast<std::uint32_t>(side) : 0;
    };
    return bitmapWithPixels(cut(points.width), cut(points.height));
}

std::uint64_t NSBitmapImageRep::changeCount() const noexcept {
    if (contexts_.load(std::memory_order_acquire) > 0) changes_.fetch_add(1, std::memory_order_relaxed);
    return changes_.load(std::memory_order_relaxed);
}

void NSBitmapImageRep::addContexts(int count) noexcept {
    contexts_.fetch_add(count, std::memory_order_release);
    changes_.fetch_add(1, std::memory_order_relaxed);
}

void NSBitmapImageRep::setEncodedData(Value data) noexcept {
    encodedData_ = std::move(data);
    changesWhenDecoded_ = changeCount();
}

std::uint32_t NSBitmapImageRep::pixelAt(std::uint32_t x, std::uint32_t y) const noexcept {
    return x < wide_ && y < high_ ? pixels_[std::size_t{y} * wide_ + x] : 0;
}

bool NSBitmapImageRep::draw(GraphicsContext& context, NSRect into, double opacity) const {
    context.drawBitmap(*this, into, opacity);
    return true;
}

bool NSCustomImageRep::init(NSSize size, DrawingHandler handler) {
    if (!Super::init() || !(size.width > 0) || !(size.height > 0) || !handler) return false;
    size_ = size;
    handler_ = std::move(handler);
    return true;
}

bool NSCustomImageRep::draw(GraphicsContext& context, NSRect into, double opacity) const {
    const GraphicsContext::SavedState state(context);
    context.clip(into);
    context.translate(into.origin.x, into.origin.y);
    context.scaleBy(into.size.width / size_.width, into.size.height / size_.height);
    const GraphicsContext::Current current(context);
    GraphicsContext::Layer layer(context);
    const bool drawn = handler_({{}, size_});
    layer.putDown(drawn ? opacity : 0);
    return drawn;
}

}  // namespace kx
