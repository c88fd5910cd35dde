// SPDX-License-Identifier: MIT

// Any file as a video. The decoders are FFmpeg's, which is not built for fuzzing: this looks at what the
// module makes of them.
#include <cstdlib>
#include <vector>

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/VideoModule.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "InputText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto video = kx::openModule<kx::VideoModule>("ffmpeg");
    if (!video) return 0;
    const kx::testing::TemporaryDirectory folder;
    const std::string path = folder.write("video", kx::fuzz::textOf(data, size));
    constexpr kx::VideoModule::Limits kLimits{1 << 18, 2000};
    std::vector<std::uint32_t> pixels;
    const auto allocate = [](void* context, std::uint32_t wide, std::uint32_t high) {
        auto& place = *static_cast<std::vector<std::uint32_t>*>(context);
        if (std::uint64_t{wide} * high > kLimits.pixels) std::abort();
        place.assign(std::size_t{wide} * high, 0);
        return place.data();
    };
    kx::VideoModule::Reason reason{};
    static_cast<void>((*video)->check(path.c_str(), &kLimits, &reason));
    kx::VideoModule::Time actual{};
    if (!(*video)->frame(path.c_str(), {1, 10}, &kLimits, allocate, &pixels, &actual, &reason)) return 0;
    for (const std::uint32_t pixel : pixels) {
        if (pixel >> 24 != 0xFF) std::abort();
    }
    return 0;
}
