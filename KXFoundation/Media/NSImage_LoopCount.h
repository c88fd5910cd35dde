// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSImage;

/// The frames of an animation in the order of showing; shared, never changed.
using ImageList = std::shared_ptr<const std::vector<std::shared_ptr<NSImage>>>;

/// What an image carries that stands for an animation. Kept with the image; a setter tells the observers of
/// the key "images", "duration" or "loopCount" before and after. An absent image keeps nothing and answers
/// none or 0. No instances. One thread at a time for each image while it is changed.
struct KX_EXPORT NSImage_LoopCount {
    NSImage_LoopCount() = delete;

    /// None unless set. Each frame of a decoded GIF has its own delay as its duration.
    [[nodiscard]] static ImageList images(const std::shared_ptr<NSImage>& image);
    static void setImages(const std::shared_ptr<NSImage>& image, ImageList images);

    /// Seconds for one pass through the frames, 0 unless set; rounded to single precision when read.
    [[nodiscard]] static float duration(const std::shared_ptr<NSImage>& image);
    static void setDuration(const std::shared_ptr<NSImage>& image, double seconds);

    /// How often the animation plays; 0, as when nothing was set, is for ever.
    [[nodiscard]] static std::int64_t loopCount(const std::shared_ptr<NSImage>& image);
    static void setLoopCount(const std::shared_ptr<NSImage>& image, std::int64_t count);
};

}  // namespace kx
