// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The table between the library and its video module (Modules/VideoModule.cpp, over FFmpeg). Any thread, one
/// file of one's own at a time for each.
namespace kx {

struct VideoModule {
    static constexpr std::uint32_t kVersion = 2;

    /// What a file may cost before it is given up.
    struct Limits {
        std::uint64_t pixels;  ///< of one frame
        std::int64_t milliseconds;
    };
    /// Why a file gave nothing.
    struct Reason {
        enum class Kind : std::uint8_t { None, Missing, Corrupt, TooLarge, TimedOut, Unsupported } kind;
        char text[256];
    };
    struct Time {
        std::int64_t value;
        std::int32_t timescale;
    };
    /// Pixels of that size in a place of the caller's, or nullptr to give up.
    using Allocate = std::uint32_t* (*)(void* context, std::uint32_t wide, std::uint32_t high);

    std::uint32_t version;
    /// The version of the library behind the module.
    const char* (*libraryVersion)();
    /// Whether the file holds a moving picture that this machine decodes: its first frame is decoded.
    bool (*check)(const char* path, const Limits* limits, Reason* reason);
    /// The frame that is shown at `time` (the first one before there is any, the last one after the end),
    /// upright, as opaque 0xAARRGGBB; `actual` is the time at which it begins.
    bool (*frame)(const char* path, Time time, const Limits* limits, Allocate allocate, void* context,
                  Time* actual, Reason* reason);
};

}  // namespace kx
