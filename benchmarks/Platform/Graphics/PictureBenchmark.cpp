// SPDX-License-Identifier: MIT

// resize/4000-to-<width>[-<filter>]/<who>: a photo scaled into given, warm memory.
// grey/4000x3000/<who>: the same photo without colour at half contrast; memcpy is the bound of what can be
// done. jpeg-thumbnail/4000-to-256/<who>: from a JPEG file in the page cache to a picture.
//
// The photo is made by make_photo.sh into the folder KX_PHOTO.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>

#include <benchmark/benchmark.h>

#include <KXFoundation/Platform/Graphics/Filters/ColorControls.h>
#include <KXFoundation/Platform/Graphics/Resampling/Resampler.h>
#include <KXFoundation/Platform/Graphics/Thumbnail.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>

#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/picture_peers.h"

namespace {

using Bitmap = std::shared_ptr<kx::NSBitmapImageRep>;
constexpr const char* kJpeg = KX_PHOTO "/photo.jpg";

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "%s in %s: run make_photo.sh\n", what, KX_PHOTO);
    std::exit(1);
}

Bitmap readPhoto() {
    std::ifstream in(KX_PHOTO "/photo.ppm", std::ios::binary);
    std::string format;
    std::uint32_t wide = 0, high = 0, most = 0;
    if (!(in >> format >> wide >> high >> most) || format != "P6" || most != 255) fail("no photo.ppm");
    in.get();
    auto bitmap = kx::NSBitmapImageRep::bitmapWithPixels(wide, high);
    std::string rgb(bitmap->pixels().size() * 3, '\0');
    if (!in.read(rgb.data(), std::streamsize(rgb.size()))) fail("a short photo.ppm");
    const auto* from = reinterpret_cast<const unsigned char*>(rgb.data());
    for (std::uint32_t& pixel : bitmap->pixels()) {
        pixel = 0xFF000000U | std::uint32_t{from[0]} << 16 | std::uint32_t{from[1]} << 8 | from[2];
        from += 3;
    }
    return bitmap;
}

kx::peers::Pixels pixelsOf(const Bitmap& bitmap) {
    return {int(bitmap->pixelsWide()), int(bitmap->pixelsHigh()),
            reinterpret_cast<std::uint8_t*>(bitmap->pixels().data())};
}

/// How far two pictures are apart, in levels, on average over the bytes.
double distance(const Bitmap& a, const Bitmap& b) {
    const kx::peers::Pixels left = pixelsOf(a), right = pixelsOf(b);
    const std::size_t count = a->pixels().size() * 4;
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i) sum += std::abs(left.bytes[i] - right.bytes[i]);
    return sum / double(count);
}

void add(const std::string& name, const std::function<void()>& work) {
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State& state) {
        for (auto _ : state) {
            work();
            benchmark::ClobberMemory();
        }
    })->Unit(benchmark::kMicrosecond);
}

using Resize = void (*)(const kx::peers::Pixels&, const kx::peers::Pixels&);

void addResize(const std::string& workload, const Bitmap& photo, std::uint32_t wide,
               kx::ResampleFilter filter, const char* peer, Resize resizePeer, double tolerance) {
    const auto ours = kx::NSBitmapImageRep::bitmapWithPixels(wide, wide * 3 / 4);
    const auto theirs = kx::NSBitmapImageRep::bitmapWithPixels(wide, wide * 3 / 4);
    const kx::NSSize size{double(wide), double(wide * 3 / 4)};
    const auto withKX = [=] { kx::resample(*photo, *ours, size, {.filter = filter}); };
    const auto withPeer = [=] { resizePeer(pixelsOf(photo), pixelsOf(theirs)); };
    withKX();
    withPeer();
    // The filters are not the same, so neither are the pixels; the pictures are.
    const double apart = distance(ours, theirs);
    if (apart > tolerance) std::fprintf(stderr, "%s: %.2f levels apart\n", workload.c_str(), apart);
    peers::checkEqualAnswers(apart <= tolerance, workload.c_str());
    add(workload + "/kx", withKX);
    add(workload + "/" + peer, withPeer);
}

/// Within a level of the formula on whole pixels.
bool isGreyOf(const Bitmap& photo, const Bitmap& grey) {
    for (std::size_t i = 0; i < photo->pixels().size(); ++i) {
        const std::uint32_t p = photo->pixels()[i], g = grey->pixels()[i];
        const double luma = 0.2126 * (p >> 16 & 255) + 0.7152 * (p >> 8 & 255) + 0.0722 * (p & 255);
        if (std::abs(luma / 2 + 255 / 4.0 - (g & 255)) > 1 || g != (0xFF000000 | (g & 255) * 0x010101))
            return false;
    }
    return true;
}

void addGrey(const Bitmap& photo) {
    const auto to = kx::NSBitmapImageRep::bitmapWithPixels(photo->pixelsWide(), photo->pixelsHigh());
    const auto withKX = [=] {
        kx::applyColorControls(*photo, *to, {.brightness = 0, .saturation = 0, .contrast = 0.5});
    };
    withKX();
    peers::checkEqualAnswers(isGreyOf(photo, to), "grey/4000x3000");
    add("grey/4000x3000/kx", withKX);
    add("grey/4000x3000/memcpy",
        [=] { std::memcpy(to->pixels().data(), photo->pixels().data(), photo->pixels().size_bytes()); });
}

Bitmap thumbnailWithKX() {
    const auto contents = kx::readFile(kx::FileSystem::slot().current(), kJpeg, std::uint64_t{256} << 20);
    if (!contents) fail("no photo.jpg");
    auto bitmap = kx::decodeThumbnail(std::as_bytes(std::span(*contents)), 256, 256);
    return bitmap ? *bitmap : nullptr;
}

void addThumbnail() {
    const Bitmap ours = thumbnailWithKX();
    const auto theirs = kx::peers::thumbnailWithGdkPixbuf(kJpeg, 256);
    double sum = 0;
    const bool sameSize = ours && theirs.size() == ours->pixels().size() * 3;
    for (std::size_t i = 0; sameSize && i < ours->pixels().size(); ++i)
        for (std::size_t c = 0; c < 3; ++c)
            sum += std::abs(int(ours->pixels()[i] >> (16 - 8 * c) & 255) - int(theirs[3 * i + c]));
    peers::checkEqualAnswers(sameSize && sum / double(theirs.size()) < 4, "jpeg-thumbnail/4000-to-256");
    add("jpeg-thumbnail/4000-to-256/kx", [] { benchmark::DoNotOptimize(thumbnailWithKX()); });
    add("jpeg-thumbnail/4000-to-256/gdkpixbuf",
        [] { benchmark::DoNotOptimize(kx::peers::thumbnailWithGdkPixbuf(kJpeg, 256)); });
}

}  // namespace

int main(int argc, char** argv) {
    using kx::peers::resizeWithGdkPixbuf;
    benchmark::Initialize(&argc, argv);
    const Bitmap photo = readPhoto();
    addResize("resize/4000-to-1000-area", photo, 1000, kx::ResampleFilter::Area, "gdkpixbuf",
              resizeWithGdkPixbuf, 4);
    addResize("resize/4000-to-1000-lanczos3", photo, 1000, kx::ResampleFilter::Lanczos3, "swscale",
              kx::peers::resizeWithSwscale, 2);
    addResize("resize/4000-to-64", photo, 64, kx::ResampleFilter::Lanczos3, "gdkpixbuf", resizeWithGdkPixbuf,
              4);
    addGrey(photo);
    addThumbnail();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
